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
