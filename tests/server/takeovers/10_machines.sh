# shellcheck shell=bash
# Three machines that take over from each other, with what is sold.

declare -A votes
for machine in six seven third; do votes[$machine]=$(free_ports); done
works "a server" on six create --name six --address 127.0.0.1 --network 127.0.0.0/8 --port "$(free_port)"
works "its standby" eval 'on six standby --for seven --address 127.0.0.1 --to "$work/seven.tar" &&
    on seven standby "$work/seven.tar" --port "$(free_port)"'
on six automatic "seven=127.0.0.1,${votes[seven]}" "third=127.0.0.1,${votes[third]}" --port "${votes[six]}" --to "$work" \
    --go-on-alone >"$work/out-six" 2>&1 &
on_six=$!
wait_for "the files for the others" 2 eval 'ls "$work"/automatic-*.tar | wc -l'
on seven automatic "$work/automatic-seven.tar" >"$work/out-seven" 2>&1 &
on_seven=$!
works "the third voter" on third automatic "$work/automatic-third.tar"
works "the server" wait $on_six
works "the standby" wait $on_seven
works "a till" eval 'on six add-till counter-6 --to "$work/till-6" && settle_in counter-6 "$work/till-6"'

starting_stock=1000000
sellers=(S0 S1 S2)
for item in A "${sellers[@]}"; do
    admin six "insert into StockList values ('$item', '$item', 'TEA', 1, 0, $starting_stock, 'Enabled')"
done
admin six "insert into Users values ('JACK', 'PASS', 'STAFF', -1, -1, 0, 0, 0, 0, 0)"
admin six "insert into StoreSettings values (0, 0, '', 0, 0)"
