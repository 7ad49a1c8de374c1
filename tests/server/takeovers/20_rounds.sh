# shellcheck shell=bash
# HARROWBY_ROUNDS times: the server's machine dies and comes back, or hands over to the other one, or a voter is gone for
# a while; meanwhile a till with its window and three connections without one sell. HARROWBY_SELLER is the program with
# both (endurance_tests).

declare -A process input
server_is() { [ "$(admin "$1" "select pg_is_in_recovery()" 2>/dev/null)" = f ]; }
find_server_now() { if server_is six && ! server_is seven; then printf six; elif server_is seven; then printf seven; fi; }
other() { if [ "$1" = six ]; then printf seven; else printf six; fi; }

# begin ROLE NAME: it sells until something is said to it.
begin() {
    local fd
    mkfifo "$work/input-$2"
    HOME=$work/home-counter-6 XDG_CONFIG_HOME='' "$HARROWBY_SELLER" failover_test "$1" "postgresql://?service=harrowby" "$2" \
        <"$work/input-$2" >"$work/sold-$2" 2>"$work/errors-$2" &
    process[$2]=$!
    exec {fd}>"$work/input-$2"
    input[$2]=$fd
}
writes_of() { grep -cE '^(D|A1) ' "$work/sold-$1"; }
# Each has sold some more.
sells_on() {
    local name before second
    for name in "${!process[@]}"; do
        before=$(writes_of "$name")
        for ((second = 0; second < 240; ++second)); do
            (($(writes_of "$name") < before + 20)) || break
            kill -0 "${process[$name]}" || break
            sleep 0.5
        done
        (($(writes_of "$name") >= before + 20)) || {
            echo "$name does not sell"
            tail -n 3 "$work/errors-$name" "$work/sold-$name"
            return 1
        }
    done
}

for name in "${sellers[@]}"; do begin --sell "$name"; done
begin --till JACK
works "all sell" sells_on

longest=0
declare -A done_so_far=([kill]=0 [switchover]=0 [voter]=0)
kinds=(kill switchover voter)
for ((round = 0; round < ${HARROWBY_ROUNDS:-3}; ++round)); do
    kind=${kinds[round % 3]}
    for ((second = 0; second < 60; ++second)); do
        server=$(find_server_now)
        [ -z "$server" ] || [ "$(protection "$server" 2>/dev/null)" != protected ] || break
        sleep 1
    done
    is "round $round, $kind: two machines before it" protected protection "$server"
    began=$(date +%s%N)
    case $kind in
        kill)
            kill_machine "$server"
            works "round $round: they sell on with the other one" sells_on
            took=$((($(date +%s%N) - began) / 1000000))
            longest=$((took > longest ? took : longest))
            works "round $round: the dead one comes back" on "$server" automatic
            ;;
        switchover)
            works "round $round: the other one takes over" on "$(other "$server")" promote
            works "round $round: they sell on" sells_on
            ;;
        voter)
            names=(six seven third)
            gone=${names[round / 3 % 3]}
            kill_voter "$gone"
            sleep 8 # more than Patroni's patience with its own voter
            works "round $round: they sell without the voter $gone" sells_on
            works "round $round: the voter comes back" on "$gone" automatic
            ;;
    esac
    done_so_far[$kind]=$((done_so_far[$kind] + 1))
    ((failures == 0)) || break
done
works "all sell still" sells_on

writes=0
for name in "${!process[@]}"; do
    echo stop >&"${input[$name]}"
    works "$name ends" wait "${process[$name]}"
    writes=$((writes + $(writes_of "$name")))
done
server=$(find_server_now)
stock_is() { is "$1: stock is what it was minus what was sold" "$2" admin "$server" "select StockAvailable from StockList where StockID = '$1'"; }
for name in "${sellers[@]}"; do
    is "$name: nothing is unknown" 0 grep -c '^U ' "$work/sold-$name"
    # A sale that could not be begun is refused as a whole; one that was begun goes through.
    is "$name: no sale is cut in two" 0 awk '/^[DRU] / { if ($3 == "stock") { if (begun && $1 != "D") ++cut } begun = $3 != "stock" && $1 == "D" } END { print cut + 0 }' "$work/sold-$name"
    admin "$server" "select PurchaseID from PurchaseCart where Users = '$name'" | sort >"$work/stored"
    awk '$1 == "D" && $3 != "stock" { print $3 }' "$work/sold-$name" | sort >"$work/told"
    works "$name: each purchase that was done is there, once, and no other" diff "$work/told" "$work/stored"
    stock_is "$name" $((starting_stock - $(grep -cE '^D .* stock$' "$work/sold-$name")))
done
purchases=$(grep -c '^A1 INSERT INTO PurchaseCart' "$work/sold-JACK")
is "the till: each purchase is there, once" "$purchases" admin "$server" "select count(*) from PurchaseCart where Users = 'JACK'"
# What counts as given up: tests/ui/given_up.h.
works "the till: no sale is given up" "$HARROWBY_SELLER" failover_test --judge "$work/sold-JACK"
stock_is A $((starting_stock - purchases))
works "no takeover took longer than the rest of a sale waits" test "$longest" -lt 60000
refused=$(cat "$work"/sold-* | grep -cE '^(R|A0) ')
printf '%d kills, %d switchovers, %d voters gone, %d writes, %d refused before a sale had begun, all sold again at most %d ms after a kill\n' \
    "${done_so_far[kill]}" "${done_so_far[switchover]}" "${done_so_far[voter]}" "$writes" "$refused" "$longest"
