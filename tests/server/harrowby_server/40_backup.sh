# shellcheck shell=bash
# backup and restore.

bases() { find "$work/backup/base" -mindepth 1 -maxdepth 1 -name '2*' -printf 'x'; }

says "status misses backups" "There are no backups" on one status
install -d -m 777 "$work/backup"
works "backup" on one backup --to "$work/backup" --keep 2 --timer 02:30
is "a timer" "OnCalendar=02:30" grep OnCalendar "$work/one/etc/systemd/system/harrowby-server-backup.timer"
says "the standby makes none" "is the standby" on two backup --to "$work/backup"
works "status is content" on one status
mv "$work/backup" "$work/unplugged"
mkdir "$work/backup"
refuses "a disk that is not plugged in" "plugged in" on one backup
is "nothing is put into its place" "" ls "$work/backup"
says "status says so" "is not there" on one status
rmdir "$work/backup"
says "without the place, too" "is not there" on one status
mv "$work/unplugged" "$work/backup"
works "a sale" sell counter-1 t1
works "another" sell counter-1 t2
works "a second backup" eval '(cd "${script%/*}" && HARROWBY_SERVER_ROOT=$work/one "./${script##*/}" backup --timer 03:30)'
is "the timer's line holds anywhere" "ExecStart=$(readlink -f "$script") backup" grep ExecStart "$work/one/etc/systemd/system/harrowby-server-backup.service"
sleep 1
on one backup >"$work/third" 2>&1 &
third=$!
wait_for "a third" 1 eval '[ ! -d "$work/backup/base/.making" ] || echo 1'
works "which is in nobody's way" on one update
works "it is made" wait "$third"
is "of which two are kept" xx bases

piece=$(find "$work/backup/log" -name '000000??????????????????' | sort | tail -n 1)
mv "$piece" "$work/piece"
refuses "a gap in the log" "has a gap" on one backup --keep 9
says "which status tells, too" "has a gap" on one status
mv "$work/piece" "$piece"
works "none any more" on one backup

refuses "a time before all backups" "no backup" on one restore --time '2020-01-01 00:00:00'
refuses "no time" "is no time" on one restore --time yesterdayish
works "a sale" sell counter-1 t3
export TZ=SHOP-9 # a time is one of the shop's clock
sleep 1.1
moment=$(date +'%Y-%m-%d %H:%M:%S')
sleep 1.1
works "a sale after it" sell counter-1 t4
sleep 1.1
later=$(date +'%Y-%m-%d %H:%M:%S')
sleep 1.1
works "a mistake" till counter-1 "delete from PurchaseCart"
timeline() { admin one "select timeline_id from pg_control_checkpoint()"; }
before=$(timeline)
works "restore to a time" on one restore --time "$moment"
is "as it was" "s1 s2 s3 s4 s5 s6 s7 t1 t2 t3" sold one
works "its timeline is above all that a till may have seen" test "$(timeline)" -gt $((before + 16))
works "a till takes it" shop counter-1 "select 1"
is "it sells" alone protection one
is "the one before is kept" 2 eval 'find "$(dirname "$(data_of one)")" -maxdepth 1 -name "harrowby.kept-*" | wc -l'
works "that was too far back" on one restore --time "$later"
is "what came after it is there again" "s1 s2 s3 s4 s5 s6 s7 t1 t2 t3 t4" sold one
works "a sale afterwards" sell counter-1 t5
works "restore to a time after the last change" on one restore --time "$(date -d '1 hour' +'%Y-%m-%d %H:%M:%S')"
is "that is all of it" "s1 s2 s3 s4 s5 s6 s7 t1 t2 t3 t4 t5" sold one
sleep 1.1
moment=$(date +'%Y-%m-%d %H:%M:%S')
sleep 1.1
works "a backup" on one backup
works "restore to before it" on one restore --time "$moment"
export TZ=UTC
works "a sale" sell counter-1 t6
works "restore without a backup since" on one restore --from "$work/backup/"
is "nor is the last minute missing" "s1 s2 s3 s4 s5 s6 s7 t1 t2 t3 t4 t5 t6" sold one
works "the standby anew" eval 'on one standby --for two --address 127.0.0.1 --to "$work/two3.tar" && on two standby "$work/two3.tar" --take-back'
is "two machines" protected protection one
works "a backup of the restored one" on one backup
works "a last sale" sell counter-1 t7
works "restore to the latest" on one restore
is "with all of it" "s1 s2 s3 s4 s5 s6 s7 t1 t2 t3 t4 t5 t6 t7" sold one

# A new machine with the shop's keys: tills know it.
works "create with keys" on three create --name three --address 127.0.0.1 --network 127.0.0.0/8 --port "$(free_port)" --keys "$work/backup/keys.tar"
works "with the same once more" on three create --keys "$work/backup/keys.tar"
mkdir "$work/another-shop"
cp "$work/other.crt" "$work/another-shop/ca.crt"
cp "$work/other.key" "$work/another-shop/ca.key"
tar -C "$work/another-shop" -cf "$work/another-shop.tar" ca.crt ca.key
refuses "another shop's keys afterwards" "has keys of its own" on three create --keys "$work/another-shop.tar"
works "the same authority" cmp "$work/one/etc/harrowby-server/ca.crt" "$work/three/etc/harrowby-server/ca.crt"

# A disk that does not keep what was written.
if [ "$(id -u)" -eq 0 ]; then # a disk that was just made and mounted is root's
    install -d -m 755 "$work/backup-three"
else
    mkdir "$work/backup-three"
fi
admin three "insert into StockList (StockID) values ('MIL00001')"
works "a sound store" on three backup --to "$work/backup-three"
mv "$work/backup-three/base"/2* "$work/backup-three/base/29990101T000000Z"
works "after a clock that was wrong" on three backup --keep 1
is "the new one stays" 1 find "$work/backup-three/base" -maxdepth 1 -name '20*' -printf 1
rm -rf "$work/backup-three/base/2999"*
admin three checkpoint
printf damaged | dd of="$(data_of three)/$(admin three "select pg_relation_filepath('stocklist')")" bs=1 seek=8100 conv=notrunc status=none
refuses "a damaged one" "earlier ones are as they were" on three backup
is "which they are" x eval 'find "$work/backup-three/base" -mindepth 1 -maxdepth 1 -name "2*" -printf x'
says "status says when the server is stopped" "does not run" eval 'kill_machine three; on three status'

# It takes the place of the machines that are gone.
works "what the shop has left" cp -a "$work/backup" "$work/backup-left"
works "restore on the new machine" on three restore --from "$work/backup-left"
is "with all of it" "$(sold one)" sold three
is "which knows itself alone" three admin three "select string_agg(name, ' ') from harrowby_server.host"
is "so that tills show no sign" single protection three
