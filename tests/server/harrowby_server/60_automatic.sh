# shellcheck shell=bash
# automatic: two machines with the store and a third voter, which take over by themselves.

declare -A votes
for machine in six seven till; do votes[$machine]=$(free_ports); done
make_six() { on six create --name six --address 127.0.0.1 --network 127.0.0.0/8 --port "$(free_port)"; }
works "a server" make_six
refuses "two voters are too few" "it takes three voters" on six automatic seven=127.0.0.1
refuses "a standby comes first" "none of these is a standby" on six automatic seven=127.0.0.2 till=127.0.0.3
works "a standby" eval 'on six standby --for seven --address 127.0.0.1 --to "$work/seven.tar" &&
    on seven standby "$work/seven.tar" --port "$(free_port)"'
refuses "an address in numbers" "in numbers" on six automatic seven=127.0.0.2 till=kiosk
refuses "without a port of the server's" "in numbers" on six automatic seven=127.0.0.2:5432 till=127.0.0.3
refuses "a whole one" "in numbers" on six automatic seven=127.2 till=127.0.0.3
refuses "not the same twice" "two machines have the address" on six automatic seven=127.0.0.1 till=127.0.0.1

name_the_others() {
    on six automatic "seven=127.0.0.1,${votes[seven]}" "till=127.0.0.1,${votes[till]}" --port "${votes[six]}" --to "$work" "$@"
}
refuses "it has to be chosen" "--go-on-alone" name_the_others
refuses "files that cannot be written" "No such file" name_the_others --go-on-alone --to "$work/none"
refuses "other machines afterwards" "this was begun with six=" on six automatic "seven=127.0.0.1,${votes[seven]}" till=127.0.0.9 \
    --port "${votes[six]}" --to "$work" --go-on-alone
name_the_others --go-on-alone >"$work/out-six" 2>&1 &
on_six=$!
wait_for "the files for the others" 2 eval 'ls "$work"/automatic-*.tar | wc -l'
is "a till gets no key of the shop" "ca.crt values voter.crt voter.key" eval 'tar -tf "$work/automatic-till.tar" | sort | paste -sd " "'
on seven automatic "$work/automatic-seven.tar" >"$work/out-seven" 2>&1 &
on_seven=$!
works "the third voter" on till automatic "$work/automatic-till.tar"
works "the server hands over" wait $on_six
works "the standby takes part" wait $on_seven
is "protected" protected protection six
refuses "another machine's file" "this machine is seven, and the file is for till" on seven automatic "$work/automatic-till.tar"
says "status of the server" "have made six the server" on six status
says "of the standby" "It is the standby of 127.0.0.1, streaming" on seven status
works "of the voter" on till status
works "automatic again" on six automatic
refuses "no standby by hand" "by themselves" on six standby --for eight --address 127.0.0.1
refuses "nor another address" "automatic --off" on six create --address 127.0.0.2
refuses "nor a restored store" "automatic --off" on six restore --from "$work"

works "a till" eval 'on six add-till counter-6 --to "$work/till-6" && settle_in counter-6 "$work/till-6"'
admin six "insert into StockList (StockID, StockName, StockAvailable) values ('MIL00001', 'MILK', 100000)"
sold_is_told() {
    admin "$2" "select PurchaseID from PurchaseCart where PurchaseID like 'busy%' order by 1" >"$work/stored"
    works "$1: each sale that the till was told of, and no other" diff "$work/busy" "$work/stored"
    is "$1: no unit too few or too many" "$((100000 - $(wc -l <"$work/busy")))" stock "$2"
}
sell_on() {
    local sold
    sold=$(wc -l <"$work/busy")
    for ((second = 0; second < 100; ++second)); do
        (($(wc -l <"$work/busy") < sold + 5)) || return 0
        sleep 0.5
    done
    return 1
}

sells_soon() {
    local second
    for ((second = 0; second < 30; ++second)); do
        ! sell counter-6 "$1" || return 0
        sleep 1
    done
    return 1
}

# One till sells on through all of it.
(cd / && HOME=$work/home-counter-6 exec "$shop_till" service=harrowby "$work/state-counter-6" --sell busy 600) \
    >"$work/busy" 2>"$work/busy-errors" &
selling=$!
works "it sells" sell_on
kill_machine six
works "the server's machine dies: it sells on" sell_on
wait_for "with the other one" "seven " eval 'on seven status | sed -n "s/.*have made \(.* \)the server.*/\1/p"'
is "alone, and says so" alone protection seven
works "the dead one is switched on" on six automatic
is "two machines" protected protection seven
works "a server that has become a standby needs no look" on six status
works "to and fro" on six promote
works "it sells with the first one" sell_on
is "which is the server" "f" admin six "select pg_is_in_recovery()"
kill_voter till
works "one voter gone: it sells on" sell_on
refuses "which is told" "The voter till does not answer" on six status
refuses "it is there" "seven answers" on six automatic --anew seven
refuses "an address that is none" "in numbers" on six automatic --anew till=kiosk
says "leaves the voter a member" "The voter till does not answer" on six status
rm -rf "${work:?}/till"
refuses "an address that another one has" "two machines have the address" on six automatic --anew "till=127.0.0.1,${votes[seven]}"
works "an address by mistake" on six automatic --anew till=127.0.0.3 --to "$work"
votes[till]=$(free_ports)
works "a new machine in its place" eval 'on six automatic --anew "till=127.0.0.1,${votes[till]}" --to "$work" && on till automatic "$work/automatic-till.tar"'
works "all voters" on till status
works "of which the others know where they are" on seven status
kill "$selling" # which ends its sale
works "none was refused" wait "$selling"
sold_is_told "after all of it" six

# Without a standby: nothing, or alone by choice.
works "no sale that is on one machine only" on six alone --off
kill_machine seven
wait_for "nothing is confirmed" waiting protection six
works "a place for a new one does not wait for that either" eval 'HARROWBY_SERVER_ROOT=$work/six timeout 90 "$script" automatic \
    --anew "seven=127.0.0.1,${votes[seven]}" --to "$work"'
refuses "an address after a blank" "takes no" on six automatic --anew seven 127.0.0.1
works "alone" on six alone
wait_for "alone" alone protection six
works "a sale" sells_soon w1
says "the voters are told of where no server runs" "have made six the server" on seven status
rm -rf "${work:?}/seven"
install -d "$work/seven/etc/harrowby-server" "$work/seven/etc/postgresql/$version/harrowby"
touch "$work/seven/etc/harrowby-server/making" # broken off
works "a new machine with the store" eval 'on six automatic --anew seven --to "$work" && on seven automatic "$work/automatic-seven.tar"'
wait_for "two machines again" protected protection six
works "another sale" sells_soon w2
is "on both" "w1 w2" sold seven

# One that leaves and comes back: nobody takes over until all leave or one takes part again.
stays() { on "$1" status | grep -c "! They were told to stay as they are"; }
works "a standby leaves" on seven automatic --off
is "the others stay as they are, and tell" 1 stays six
stop_service six harrowby-patroni
kill_server six
wait_for "nobody is the server any more" 1 eval 'on six status | grep -c "! The voters have no server at the moment"'
works "the server takes part again, after a power cut, too" on six automatic
works "and sells" sells_soon w2b
is "they decide again" 0 stays six
works "told to stay once more" patronictl -c "$work/six/etc/harrowby-server/patroni.yml" pause harrowby --wait
works "the standby comes back" eval 'on six automatic --anew seven --to "$work" && on seven automatic "$work/automatic-seven.tar"'
is "they decide again with it" 0 stays seven
wait_for "two machines as before" protected protection six

# By hand again; one that was the server until another one took over is none.
works "the other one is the server" on seven promote
wait_for "two machines" protected protection seven
works "and the voters know" on six automatic
kill_machine seven
works "a sale after it died" sells_soon w3
works "it is switched on, and no more automatic" on seven automatic --off
says "it does not sell" "is the standby" on seven add-till counter-7
refuses "nor does it by mistake" "still answers" on seven promote --other-is-off
works "the third one" on till automatic --off
HARROWBY_SERVER_ROOT=$work/six "$script" automatic --off >/dev/null 2>&1 &
leaving=$!
while kill -0 $leaving 2>/dev/null && [ -f "$(data_of six)/postmaster.pid" ]; do sleep 0.02; done
kill -KILL $leaving
wait $leaving 2>/dev/null
works "it was broken off" test -f "$work/six/etc/harrowby-server/patroni.yml"
[ ! -f "$(data_of six)/postmaster.pid" ] || kill_machine six
refuses "what it never had is told" "never caught up" on seven promote --other-is-off
works "the server, the last" on six automatic --off
says "the server says since when it is alone" "It sells alone since 20" on six status
works "the standby follows" eval 'on six standby --for seven --address 127.0.0.1 --to "$work/seven2.tar" && on seven standby "$work/seven2.tar" --take-back'
is "as before" protected protection six
works "a sale by hand" sells_soon w4
is "on both again" "w1 w2 w2b w3 w4" sold seven
