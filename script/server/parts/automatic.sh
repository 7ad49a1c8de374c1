# shellcheck shell=bash
# automatic: the machines decide by themselves which one is the server. On the server it names the machines and writes what
# each needs, on each other one it takes part. What was begun is gone on with by calling it again.

do_automatic() {
    take_options "port: to: anew: go-on-alone stand-still off" "$@"
    if [ -n "${opt[off]:-}" ]; then
        takes_nothing_else "automatic --off"
        leave_automatic
    elif [ -n "${opt[anew]:-}" ]; then
        takes_nothing_else "automatic --anew NAME"
        invite_anew "${opt[anew]}"
    elif ((${#rest[@]} == 0)); then
        is_voter || misused "automatic takes the other machines: NAME=ADDRESS NAME=ADDRESS, or the file that the server has written"
        go_on
    elif [[ ${rest[0]} == *=* ]]; then
        name_members "${rest[@]}"
        go_on
    else
        ((${#rest[@]} == 1)) || misused "either automatic NAME=ADDRESS NAME=ADDRESS, or automatic FILE"
        take_part "$(absolute "${rest[0]}")"
        go_on
    fi
}

# ---- on the server

# member NAME=ADDRESS[,PORT]
member() {
    local name=${1%%=*} where=${1#*=} port=${opt[port]:-2379} address
    address=${where%,*}
    [ "$address" = "$where" ] || port=${where##*,}
    check_name "$name"
    check_number "$port"
    is_number_address "$address" || misused "$name needs an address in numbers, like 192.168.1.12"
    printf '%s=%s,%s' "$name" "$address" "$port"
}

# Again before the server is handed over, it writes the files once more.
name_members() {
    local one name begun_with=${auto[members]:-}
    need_primary
    ! is_automatic || die "this server is automatic already. A machine in place of another one: automatic --anew NAME"
    (($# >= 2 && $# % 2 == 0)) || die "it takes three voters (or five): name two other machines, of which one may be a till.
    Of two, neither can know whether the other one is dead or only the cable between them"
    auto[name]=${machine[name]}
    auto[members]=$(member "${machine[name]}=${machine[address]}")
    auto[stores]=${machine[name]}
    for one in "$@"; do
        one=$(member "$one")
        name=${one%%=*}
        [ -z "$(where_is "$name")" ] || misused "$name is named twice"
        [[ " ${auto[members]} " != *"=${one#*=} "* ]] || misused "two machines have the address ${one#*=}"
        auto[members]+=" $one"
        ! is_followed_by "$name" || auto[stores]+=" $name"
    done
    [ -z "$begun_with" ] || [ "$begun_with" = "${auto[members]}" ] ||
        die "this was begun with $begun_with. With other machines: first harrowby-server automatic --off"
    [ "${auto[stores]}" != "${machine[name]}" ] || die "none of these is a standby that is up to date: harrowby-server standby comes first"
    [ "$(sql -c 'select harrowby.protection()')" = protected ] || die "the standby has to be relied on first: harrowby-server status"
    need_choice
    : "${auto[token]:=$(random_word)}"
    auto[born]=new
    need_programs store
    save_automatic
    make_keeper_login
    remember_wish
    member_names | tail -n +2 | while read -r name; do
        write_invitation "$name"
    done
    say "On each of these machines: harrowby-server automatic FILE. Delete the files afterwards."
}

# With two standbys, one may die and each sale is still on two machines.
need_choice() {
    [ "$(wc -w <<<"${auto[stores]}")" -gt 2 ] || [ -n "${opt[go-on-alone]:-}${opt[stand-still]:-}" ] ||
        misused "there is one standby, so say what is to be when one of the two dies: --go-on-alone (the other one sells on, under
    a sign; what it sells is on one machine only), or --stand-still (nothing is sold until both are there, or somebody says
    harrowby-server alone)"
    [ -z "${opt[go-on-alone]:-}" ] || [ -z "${opt[stand-still]:-}" ] || misused "either --go-on-alone or --stand-still"
}

is_followed_by() {
    [ -n "$(sql -v name="$1" -f - <<<"select 1 from pg_stat_replication r join harrowby_server.host h on h.name = r.application_name
        where r.application_name = :'name' and r.state = 'streaming'")" ]
}

# It counts once all machines are there.
remember_wish() { if [ -n "${opt[go-on-alone]:-}" ]; then : >"$etc/go-on-alone"; else rm -f "$etc/go-on-alone"; fi; }

# A machine that votes alone gets neither the shop's keys nor the store.
write_invitation() {
    local name=$1 folder file files=(ca.crt voter.crt voter.key values) where
    where=$(where_is "$name")
    file=$(absolute "${opt[to]:-.}")/automatic-$name.tar
    folder=$(mktemp -d)
    chmod 700 "$folder"
    cp "$etc/ca.crt" "$folder"
    write_voter_certificate "$name" "${where%,*}" "$folder"
    {
        printf 'name=%s\nnetwork=%s\ntills=%s\nversion=%s\nserver_port=%s\n' \
            "$name" "${machine[network]}" "${machine[tills]}" "$version" "$(port_of "$name")"
        printf 'members=%s\nstores=%s\ntoken=%s\nborn=%s\n' "${auto[members]}" "${auto[stores]}" "${auto[token]}" "${auto[born]}"
    } >"$folder/values"
    if has_store "$name"; then
        cp "$etc/ca.key" "$etc/keeper" "$folder"
        files+=(ca.key keeper)
    fi
    (umask 077 && tar -C "$folder" -cf "$file.new" "${files[@]}")
    mv "$file.new" "$file"
    for_carrying "$file"
    rm -rf "$folder"
    say "Written: $file"
}

port_of() { sql -v name="$1" -f - <<<"select coalesce((select port from harrowby_server.host where name = :'name'), ${machine[port]})"; }

# In place of a machine that will not come back, or of what it has lost.
invite_anew() {
    local name=${1%%=*} number was new as_member=
    need_primary
    is_automatic || die "this server is not automatic"
    [ -n "$(where_is "$name")" ] || die "there is no machine $name among: $(member_names | paste -sd ' ')"
    [ "$name" != "${auto[name]}" ] || misused "$name is this machine"
    ! voter_answers "$name" || die "$name answers: it is there. Switch it off first, if another one is to take its place"
    voters_agree || die "the voters do not agree: more than half of them have to be there"
    was=$(url "$name" 1) # by which the voters know one that was never there
    [[ $1 != *=* ]] || as_member=$(member "$1")
    [ -z "$as_member" ] || [[ " $(tr ' ' '\n' <<<"${auto[members]}" | grep -v "^$name=" | paste -sd ' ') " != *"=${as_member#*=} "* ]] ||
        misused "two machines have the address ${as_member#*=}"
    [ -z "$as_member" ] ||
        auto[members]=$(tr ' ' '\n' <<<"${auto[members]}" | sed "s/^$name=.*/$as_member/" | paste -sd ' ')
    new=$(url "$name" 1) # by which they know one that an earlier try has added, and that never began
    vote member list | awk -F ', ' -v name="$name" -v was="$was" -v new="$new" '
        $3 == name || $4 == was || ($4 == new && $3 == "") { print $1 }' |
        while read -r number; do
            vote member remove "$number" </dev/null >/dev/null || die "the voters do not let $name go"
        done
    vote member add "$name" --peer-urls "$new" >/dev/null || die "the voters do not take $name"
    save_automatic
    [ -z "$as_member" ] || ! has_store "$name" ||
        sql -v name="$name" -v address="$(where_is "$name" | cut -d , -f 1)" -f - >/dev/null <<'SQL'
set synchronous_commit = local; -- the standby may be the very machine that is gone
update harrowby_server.host set address = :'address' where name = :'name';
SQL
    auto[born]=existing # for the other machine; what this one was born as, stays
    write_invitation "$name"
    say "There: harrowby-server automatic FILE. Delete the file afterwards."
}

# ---- on the other machines

take_part() {
    local file=$1 key value own=${machine[name]:-${auto[name]:-}} for_whom
    [ -f "$file" ] || die "there is no file $file"
    invitation=$(mktemp -d)
    chmod 700 "$invitation"
    trap 'rm -rf "$invitation"' EXIT
    tar -C "$invitation" -xf "$file" --no-same-owner 2>/dev/null && [ -f "$invitation/voter.key" ] ||
        die "$file is not what automatic writes on the server"
    for_whom=$(sed -n 's/^name=//p' "$invitation/values")
    # One that was something else before may get the place; one of this shop's has its own.
    [ -z "$own" ] || [ "$own" = "$for_whom" ] || ! grep -q "^members=\(.* \)\?$own=" "$invitation/values" ||
        die "this machine is $own, and the file is for $for_whom"
    [ ! -f "$etc/ca.crt" ] || cmp -s "$etc/ca.crt" "$invitation/ca.crt" || die "this machine belongs to another server's shop"
    while IFS='=' read -r key value; do
        case $key in
            name | members | stores | token | born) auto[$key]=$value ;;
            network | tills | version | server_port) told[$key]=$value ;;
        esac
    done <"$invitation/values"
    check_name "${auto[name]}"
    take_voter_part
    ! has_store "${auto[name]}" || take_store_part
    save_automatic
}
declare -A told=() # of the server, for a machine that has the store

take_voter_part() {
    if has_store "${auto[name]}"; then need_programs store; else need_programs voter; fi
    put "$etc/ca.crt" 644 "$(id -un)" <"$invitation/ca.crt"
    take_voter_certificate "$invitation"
    [ "${auto[born]}" != existing ] || [ ! -d "$voter_data/member" ] || {
        no_longer harrowby-voter
        mv "$voter_data" "$voter_data.kept-$(date -u +%Y%m%dT%H%M%S)"
    }
}

# The standby that there is goes on as one; a new machine gets its copy by Patroni.
take_store_part() {
    local where
    where=$(where_is "${auto[name]}")
    put "$etc/ca.key" 600 "$(id -un)" <"$invitation/ca.key"
    put "$etc/keeper" 600 "$(id -un)" <"$invitation/keeper"
    machine[name]=${auto[name]}
    machine[address]=${where%,*}
    machine[network]=${told[network]}
    machine[tills]=${told[tills]}
    if [ ! -d "$conf" ] || is_half_made; then
        machine[version]=${told[version]}
        machine[port]=${told[server_port]}
        find_server
        need_server
        make_cluster
        stop_server
        rm -rf "${data:?}" # nothing is in it yet
        as_owner_folder "$data"
        rm -f "$etc/making"
    fi
    [ "$version" = "${told[version]}" ] || die "the server is PostgreSQL ${told[version]}, this machine $version"
    if [ "${auto[born]}" = existing ] && has_data; then
        no_longer harrowby-patroni
        stop_server
        keep_aside "$data"
        as_owner_folder "$data"
    fi
    ! has_data || is_automatic || is_standby || die "this machine has a server with data, and is no standby: harrowby-server
    standby FILE --take-back makes it one"
    save_machine
    make_certificate
}

has_data() { [ -f "$data/PG_VERSION" ]; }

# ---- on each

go_on() {
    ! is_half_made || die "this machine's part was broken off: harrowby-server automatic FILE once more"
    load_automatic
    start_own_voter
    patiently "Waiting for more voters: on the other machines, harrowby-server automatic FILE ..." has_joined
    learn_addresses
    save_automatic
    if ! has_store "${auto[name]}"; then
        say "This machine is a voter."
    elif is_automatic || is_standby || ! has_data; then
        go_on_as_standby
    else
        go_on_as_server
    fi
}

has_joined() { voters_agree && voter_answers "${auto[name]}"; }

# The server makes its own certificate, the others have brought theirs.
start_own_voter() {
    local folder
    if [ ! -f "$etc/voter.key" ]; then
        folder=$(mktemp -d)
        write_voter_certificate "${auto[name]}" "${machine[address]}" "$folder"
        take_voter_certificate "$folder"
        rm -rf "$folder"
    fi
    start_voter
}

# Until Patroni has taken the list of standbys over, it stands where Patroni's own goes before it.
go_on_as_server() {
    local names
    patiently "Waiting for all voters: on the other machines, harrowby-server automatic FILE ..." all_voters_answer
    say "Handing the server over ..."
    names=$(sql_in_postgres -c 'show synchronous_standby_names')
    [ -n "$(kept config)" ] || agreed_settings | vote put /service/harrowby/config >/dev/null || die "the voters do not answer"
    put "$conf/conf.d/handing-over.conf" 644 "$owner" <<<"synchronous_standby_names = '$names'"
    write_settings
    sql_in_postgres -c 'alter system reset synchronous_standby_names' -c 'select pg_reload_conf()' >/dev/null
    start_keeper
    patiently "Waiting for Patroni to take over; its log: $server_log ..." is_leader
    finish_server
}

finish_server() {
    patiently "Waiting for the standby: there, harrowby-server automatic FILE ..." is_relied_on
    rm -f "$conf/conf.d/handing-over.conf"
    control reload
    sql -c "delete from harrowby_server.remark where name = 'alone'" >/dev/null
    if [ -f "$etc/go-on-alone" ]; then
        change_agreed synchronous_mode_strict=false
        rm -f "$etc/go-on-alone"
    fi
    say "The machines take over from each other by themselves now."
}

go_on_as_standby() {
    local took_part=
    if is_automatic; then
        took_part=yes
        start_keeper # it may have been the server, and nobody is before it is there
        # While the machines stay as they are, one that has stopped is not started. A standby may have to stay one.
        is_standby || ! has_data || decide_again
    fi
    patiently "Waiting for the server to hand over: there, harrowby-server automatic ..." has_leader
    if is_leader; then
        decide_again
        patiently "Waiting for the server to start; its log: $server_log ..." is_running
        [ ! -f "$conf/conf.d/handing-over.conf" ] || finish_server
        say "This machine is the server. harrowby-server status tells more."
        return 0
    fi
    write_settings
    rm -f "$conf/conf.d/standby.conf" "$conf/standby.pgpass"
    [ -n "$took_part" ] || start_keeper
    decide_again
    patiently "Waiting for the copy of the server's store; the log: $server_log ..." follows
    patiently "Waiting until the server relies on this machine ..." is_relied_on
    date -u +%Y-%m-%dT%H:%M:%SZ | put "$etc/relied-on" 644 "$(id -un)"
    say "This machine is a standby, and takes over by itself when the server dies."
}

# ---- the other commands, where machines are automatic

promote_automatically() {
    local from
    from=$(leader)
    [ -n "$from" ] || die "there is no server at the moment, and the voters decide which machine becomes it: harrowby-server status"
    [ "$from" != "${auto[name]}" ] || {
        say "This machine is the server already."
        return 0
    }
    keeper switchover harrowby --master "$from" --candidate "${auto[name]}" --scheduled now --force ||
        die "not promoted: this machine may lack what the server has. harrowby-server status"
    patiently "Waiting for $from to step back ..." is_leader
    say "This machine is the server now, and $from its standby."
}

go_alone_automatically() {
    is_leader || die "do this on the server: $(leader)"
    if [ -n "${opt[off]:-}" ]; then
        change_agreed synchronous_mode_strict=true
        say "Without a standby the server confirms nothing, from now on."
    else
        change_agreed synchronous_mode_strict=false
        ! is_waiting || restart_keeper
        patiently "Waiting for the server ..." has_left_off
        say "Without a standby the server goes on alone: what is sold then is on one machine only, and the tills say so."
    fi
}
