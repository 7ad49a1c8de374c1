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
# What the log of a restore that was broken off at its end has left.
install -d "$(data_of one).restored.log"
cp "$(data_of one)/PG_VERSION" "$(data_of one).restored.log/0000AAAA.history"
chmod -R a+rX "$(data_of one).restored.log"
works "a second backup" eval '(cd "${script%/*}" && HARROWBY_SERVER_ROOT=$work/one "./${script##*/}" backup --timer 03:30)'
is "the timer's line holds anywhere" "ExecStart=$(readlink -f "$script") backup" grep ExecStart "$work/one/etc/systemd/system/harrowby-server-backup.service"
works "takes what a restore has left" test -f "$work/backup/log/0000AAAA.history"
rm "$work/backup/log/0000AAAA.history"
install -d "$work/hanging"
printf '#!/bin/sh\ncase $1 in */backup) exec sleep 15 ;; esac\nexec /bin/ls "$@"\n' >"$work/hanging/ls"
chmod +x "$work/hanging/ls"
PATH=$work/hanging:$PATH refuses "a folder that hangs" "does not answer" on one backup
PATH=$work/hanging:$PATH says "which status tells, too" "does not answer" on one status
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
works "a till of which somebody will think again" eval 'on one add-till short --to "$work/till-short" && settle_in short "$work/till-short"'
works "it gets in" till short "select 1"
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
works "it is shut out" on one remove-till short
works "another till" eval 'on one add-till late --to "$work/till-late" && settle_in late "$work/till-late"'
works "a new password" eval 'on one add-till counter-1 --new-password --to "$work/till-1n" && settle_in counter-1 "$work/till-1n"'
connected() { admin one "select count(*) from pg_stat_activity where usename = 'till_counter-1'"; }
till counter-1 "select pg_sleep(15)" >"$work/connected" 2>&1 &
connected=$!
wait_for "a till is connected" 1 connected
refuses "it is not to sell while the store is replaced" "these are connected: till_counter-1" on one restore --time "$moment"
kill "$connected"
wait_for "it is closed" 0 connected
mkfifo "$work/typed"
(cd / && HOME=$work/home-counter-1 PGSERVICE=harrowby PGTARGETSESSIONATTRS=read-write "$programs/psql" -X <"$work/typed") >/dev/null 2>&1 &
on one restore --time "$moment" >"$work/restoring" 2>&1 &
restoring=$!
wait_for "it is being restored" here eval '[ ! -d "$(data_of one).restored" ] || echo here'
exec 7>"$work/typed" # from here on a till is connected, until this is closed
wait_for "which is waited for" "Waiting until these are closed: till_counter-1" grep Waiting "$work/restoring"
exec 7>&-
works "restore to a time" wait "$restoring"
is "the standby knows that it has another past" restored admin two "select value from harrowby_server.remark where name = 'alone'"
refuses "who was shut out since stays out" "authentication failed" till short "select 1"
works "who was let in since gets in" till late "select 1"
is "a till is no more than one" "harrowby_till 8" admin one "select concat_ws(' ', string_agg(g.rolname, ' '), r.rolconnlimit)
    from pg_roles r join pg_auth_members m on m.member = r.oid join pg_roles g on g.oid = m.roleid
    where r.rolname = 'till_late' group by r.rolconnlimit"
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
on one restore >"$work/restoring" 2>&1 &
restoring=$!
wait_for "it is being restored" here eval '[ ! -d "$(data_of one).restored" ] || echo here'
works "a sale of a till that was opened meanwhile" sell counter-1 t6
works "then it is not restored" eval '! wait "$restoring"'
works "and that is said" grep "something was sold or changed" "$work/restoring"
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
if [ "$(id -u)" -eq 0 ]; then # that machine's user has another number
    chown -R 4242:4242 "$work/backup-left"
    chmod 700 "$work/backup-left" "$work"/backup-left/{base,log} # as backup makes them
    (on three restore --from "$work/backup-left" >"$work/unread" 2>&1) || true
    works "what the server cannot read is told with what mends it" eval "$(sed -nE 's/^ *(chown .*), then this once more$/\1/p' "$work/unread")"
fi
printf '#!/bin/sh\ncase $1 in */backup-three) exec sleep 15 ;; esac\nexec /bin/ls "$@"\n' >"$work/hanging/ls"
PATH=$work/hanging:$PATH says "restore on the new machine, whose own backups hang" "backup-three does not answer" on three restore --from "$work/backup-left"
works "tills get in as before" eval 'admin three "select rolpassword from pg_authid where rolname = '"'till_counter-1'"'" | grep SCRAM'
is "with all of it" "$(sold one)" sold three
is "which knows itself alone" three admin three "select string_agg(name, ' ') from harrowby_server.host"
is "so that tills show no sign" single protection three
works "no backups any more" on three backup --off
is "the timer is gone, too" "" find "$work/three/etc/systemd" -name 'harrowby-server-backup*'
says "which status tells" "There are no backups" on three status
works "what is there stays" test -d "$work/backup-three/base"
works "a look at the backups, on that machine" on three restore --from "$work/backup"
works "a sale on the server" sell counter-1 t8
works "which is restored all the same" on one restore
is "with all of it" "s1 s2 s3 s4 s5 s6 s7 t1 t2 t3 t4 t5 t6 t7 t8" sold one
# Broken off just before the restored one came: who was shut out by then stays so.
works "all of it is in a backup" on one backup
kill_machine one
mv "$(data_of one)" "$(data_of one).kept-broken"
printf -- '-- %s\nalter role till_late nologin;\n' "$(data_of one).kept-broken" >"$work/one/etc/harrowby-server/logins"
works "restore once more" on one restore
refuses "with the logins of the first try" "not permitted to log in" till late "select 1"
: >"$work/one/etc/harrowby-server/logins"
works "a till later" on one remove-till late
is "no later restore brings those back" "" find "$work/one/etc/harrowby-server" -name logins
kill_machine three
works "no backups with a server that does not run" on three backup --off
refuses "nothing else with it" "takes nothing else" on three backup --off --to "$work/backup-three"
