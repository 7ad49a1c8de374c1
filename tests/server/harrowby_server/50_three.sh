# shellcheck shell=bash
# A second standby: one may be gone, and one follows whichever of the others is promoted.

port_five=$(free_port)
on one standby --for two --address 127.0.0.1 --to "$work/two4.tar" >/dev/null
on two standby "$work/two4.tar" --take-back >"$work/out-two" 2>&1 &
wait_for "a copy that is made anew has not caught up" gone eval '[ -f "$work/two/etc/harrowby-server/relied-on" ] || echo gone'
works "one standby" wait $!
works "which has then" test -f "$work/two/etc/harrowby-server/relied-on"
works "a second one" eval 'on one standby --for five --address 127.0.0.1 --to "$work/five.tar" && on five standby "$work/five.tar" --port "$port_five"'
is "both are relied on" 2 admin one "select count(*) from pg_stat_replication where sync_state in ('sync', 'potential')"
says "all is well" "Standby five" on one status
admin one "alter system set synchronous_standby_names = 'FIRST 1 (\"two\")'" >/dev/null
admin one "select pg_reload_conf()" >/dev/null
says "one that no sale waits for is told" "! The standby five follows, and no sale waits for it" on one status
works "as told" on one alone --off
is "both are relied on again" 2 admin one "select count(*) from pg_stat_replication where sync_state in ('sync', 'potential')"
on one standby --for a-third --address 127.0.0.9 --to "$work/third.tar" >/dev/null
is "one that is only invited is no trouble" 0 eval 'on one status | grep -c third'
admin one "select pg_create_physical_replication_slot('standby_a_third', true)" >/dev/null
says "one that was broken off is told" "! The log is kept for a-third" on one status
works "and given up" on one remove-standby a-third
is "nothing is kept for it" "0 0" admin one "select concat_ws(' ', (select count(*) from pg_replication_slots where slot_name like '%third'),
    (select count(*) from pg_roles where rolname like '%third'))"
is "both are relied on as before" 2 admin one "select count(*) from pg_stat_replication where sync_state in ('sync', 'potential')"
works "the till learns of them" on one add-till counter-1 --to "$work/till-1e"
works "the till's own part" settle_in counter-1 "$work/till-1e"
start_machine() { env PG_CLUSTER_CONF_ROOT="$work/$1/etc/postgresql" pg_ctlcluster --skip-systemctl-redirect "$version" harrowby start >/dev/null 2>&1; }
kill_machine two
wait_for "the other one confirms" protected protection one
says "the one that is gone is told" "! The standby two does not follow" on one status
works "a sale without the first" sell counter-1 u1
kill_machine one
refuses "promote does not know what the other one has" "two does not answer" on five promote --other-is-off
start_machine two
wait_for "the other one is there" t admin two "select pg_is_in_recovery()"
refuses "the one that lacks a sale" "five has more" on two promote --other-is-off
works "promote" on five promote --other-is-off
works "a sale there" sell counter-1 u2
kept() { find "$(dirname "$(data_of two)")" -maxdepth 1 -name 'harrowby.kept-*' -printf x; }
before=$(kept)
works "the first follows it" eval 'on five standby --for two --address 127.0.0.1 --to "$work/two5.tar" && on two standby "$work/two5.tar"'
is "without a new copy" "$before" kept
is "two machines" protected protection five
works "a last sale" sell counter-1 u3
is "all of it on both" "$(sold five)" sold two
says "and all of it" "u1 u2 u3" sold two
