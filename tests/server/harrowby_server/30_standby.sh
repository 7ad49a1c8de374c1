# shellcheck shell=bash
# standby, alone, promote, and the old one taken back.

is "without a standby" single protection one
works "standby --for" on one standby --for two --address 127.0.0.1 --to "$work/two.tar"
works "standby" on two standby "$work/two.tar" --port "$port_two"
is "each sale on two machines" protected protection one
is "which the standby has" 1 admin two "select count(*) from StockList"
works "standby again" on two standby "$work/two.tar"
is "still on two machines" protected protection one
follower() { admin one "select pid from pg_stat_replication where sync_state = 'sync'"; }
follows_anew() { [ -n "$(follower)" ] && [ "$(follower)" != "$1" ] && echo yes; }
before=$(follower)
works "standby --for again" on one standby --for two --address 127.0.0.1 --to "$work/two-again.tar"
admin one "select pg_terminate_backend($before)" >/dev/null
wait_for "the one that follows gets in as before" yes follows_anew "$before"
works "the second file is as good" on two standby "$work/two-again.tar"
says "a new password is told" "gets a new password" on one standby --for two --address 127.0.0.1 --to "$work/two-again.tar" --new-password
works "which the standby takes" on two standby "$work/two-again.tar"
says "status of a standby" "It is the standby of 127.0.0.1, streaming" on two status
is "which needs no look" 0 eval 'on two status >"$work/status"; echo $?'
is "how much it has" 1 grep -cE 'position [0-9]{7,}\.$' "$work/status"
refuses "tills are let in on the server" "this machine is the standby" on two add-till counter-9
refuses "the server is not its own standby" "is the server itself" on one standby "$work/two-again.tar" --take-back
is "and goes on" protected protection one
touch "$work/one/etc/harrowby-server/making"
works "create where a mark of its beginning was left" on one create
touch "$work/one/etc/harrowby-server/making"
is "nothing is deleted" 1 admin one "select count(*) from StockList"
works "the till learns of it" on one add-till counter-1 --to "$work/till-1d"
works "the till's own part" settle_in counter-1 "$work/till-1d"
is "two hosts" 2 grep -o 127.0.0.1 -c <(tr , '\n' <"$work/till-1d/service")
works "a sale" sell counter-1 s1

# The standby gone: nothing is promised, until the shop chooses to go on alone.
kill_machine two
(sell counter-1 s2 >"$work/s2" 2>&1 && echo sold >"$work/s2") &
selling=$!
wait_for "the sign" waiting protection one
sleep 1
is "no sale is confirmed" "" cat "$work/s2"
refuses "nor anything else written" "the standby is gone" on one add-till counter-8
says "status says so" "NOTHING IS SOLD" on one status
works "alone" on one alone
wait "$selling"
is "the sale goes through" sold cat "$work/s2"
is "the sign of it" alone protection one
refuses "the standby is not back" "no standby has caught up" on one alone --off
works "a sale alone" sell counter-1 s3
env PG_CLUSTER_CONF_ROOT="$work/two/etc/postgresql" pg_ctlcluster --skip-systemctl-redirect "$version" harrowby start >/dev/null 2>&1
wait_for "the standby is back" "s1 s2 s3" sold two
refuses "promote while the server still sells" "still answers" on two promote --other-is-off
works "alone --off" on one alone --off
wait_for "two machines again" protected protection one
works "another sale" sell counter-1 s4

# The server dies while a till sells, which goes on with the standby: nothing is lost, nothing is there twice.
before=$(stock one)
# One that had not begun may be refused, is told so, and is tried again.
shop counter-1 --sell busy 12 >"$work/busy" 2>"$work/busy-errors" &
selling=$!
sleep 2
kill_machine one
mv "$work/two/etc/harrowby-server/relied-on" "$work/relied-on"
refuses "promote knows that it never caught up" "never caught up" on two promote --other-is-off
mv "$work/relied-on" "$work/two/etc/harrowby-server/relied-on"
refuses "promote insists" "--other-is-off" on two promote
works "promote" on two promote --other-is-off
works "the till goes on" wait "$selling"
is "each sale that it was told of, and no other" "$(cat "$work/busy")" admin two "select PurchaseID from PurchaseCart where PurchaseID like 'busy%' order by 1"
is "no unit too few or too many" "$((before - $(wc -l <"$work/busy")))" stock two
works "another till" sell counter-1 s5
is "nothing is lost" "s1 s2 s3 s4 s5" sold two
is "the sign on the new one" alone protection two
works "promote again" on two promote --other-is-off
works "a mark of its beginning was left" test -f "$work/one/etc/harrowby-server/making"
works "standby --for the old one" on two standby --for one --address 127.0.0.1 --to "$work/one.tar"
refuses "its data is not overwritten by mistake" "with --take-back" on one standby "$work/one.tar"
works "the old one taken back" on one standby "$work/one.tar" --take-back
is "its old data is kept" 1 find "$(dirname "$(data_of one)")" -maxdepth 1 -name 'harrowby.kept-*' -printf 1
is "two machines again" protected protection two
works "a sale on both" sell counter-1 s6
is "on both" "s1 s2 s3 s4 s5 s6" sold one

# What the standby lacks is told: alone, and then the end.
works "alone again" on two alone
wait_for "the standby knows" 1 admin one "select count(*) from harrowby_server.remark where name = 'alone'"
kill_machine two
refuses "promote says what would be lost" "may not be here" on one promote --other-is-off
works "unless it is told to" on one promote --other-is-off --without-what-it-lacks
works "two taken back" eval 'on one standby --for two --address 127.0.0.1 --to "$work/two2.tar" && on two standby "$work/two2.tar" --take-back'

# A machine that is gone for good.
refuses "one that follows is not removed" "Switch it off first" on one remove-standby two
refuses "nor one that there is not" "no standby three" on one remove-standby three
kill_machine two
works "the standby is given up" on one remove-standby two
is "nothing is waited for" single protection one
works "a sale without it" sell counter-1 s7
is "nobody tells of it" 0 eval 'on one status | grep -c "does not follow\|alone"'
is "no log is kept for it" 0 admin one "select count(*) from pg_replication_slots"
works "and made anew, as a standby is" eval 'on one standby --for two --address 127.0.0.1 --to "$work/two3.tar" && on two standby "$work/two3.tar" --take-back'
is "two machines once more" protected protection one
