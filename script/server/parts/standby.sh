# shellcheck shell=bash
# standby: on the server it writes what a second machine needs, on the second machine it makes the standby of it.

do_standby() {
    take_options "for: address: to: new-password port: take-back" "$@"
    ! is_automatic || die "the machines copy from each other by themselves. A new machine in place of one: automatic --anew NAME"
    if [ -n "${opt[for]:-}" ]; then
        ((${#rest[@]} == 0)) || misused "either standby --for NAME or standby FILE"
        invite_standby
    else
        ((${#rest[@]} == 1)) || misused "standby takes the file that the server has written (standby --for NAME there)"
        become_standby "$(absolute "${rest[0]}")"
    fi
}

# ---- on the server

invite_standby() {
    local name=${opt[for]} file role folder
    check_name "$name"
    [ -n "${opt[address]:-}" ] || misused "standby --for NAME needs --address: the second machine's address"
    check_address "${opt[address]}"
    need_primary
    need_writable
    [ "$name" != "${machine[name]}" ] || misused "$name is this machine"
    file=$(absolute "${opt[to]:-standby-$name.tar}")
    role=standby_$name
    [ -n "$(sql -c "select 1 from pg_roles where rolname = '$role'")" ] ||
        sql -c "create role \"$role\" login replication in role harrowby_standby"
    set_standby_password "$role"
    folder=$(mktemp -d)
    chmod 700 "$folder"
    cp "$etc/ca.crt" "$etc/ca.key" "$folder"
    cp "$etc/$role" "$folder/password"
    cat >"$folder/values" <<VALUES
name=$name
address=${opt[address]}
network=${machine[network]}
tills=${machine[tills]}
version=$version
server=${machine[address]}
server_port=${machine[port]}
VALUES
    (umask 077 && tar -C "$folder" -cf "$file.new" ca.crt ca.key password values)
    mv "$file.new" "$file"
    for_carrying "$file"
    rm -rf "$folder"
    say "Written: $file. It holds the keys of the shop: carry it to $name yourself, and delete it afterwards."
    say "There: harrowby-server standby FILE"
}

# A standby that follows goes on with the word that it has: one that is new to it is refused at its next login.
set_standby_password() {
    local role=$1
    if [ ! -f "$etc/$role" ] || [ -n "${opt[new-password]:-}" ]; then
        [ -z "$(sql -c "select 1 from pg_stat_activity where usename = '$role' and backend_type = 'walsender'")" ] ||
            warn "the standby ${opt[for]} gets a new password: without this file it cannot log in again, and nothing is sold then"
        random_word | put "$etc/$role" 600 "$(id -un)"
    fi
    set_password "$role" "$(cat "$etc/$role")"
}

# ---- on the second machine

become_standby() {
    local file=$1
    [ -f "$file" ] || die "there is no file $file"
    invitation=$(mktemp -d)
    chmod 700 "$invitation"
    trap 'rm -rf "$invitation"' EXIT
    tar -C "$invitation" -xf "$file" --no-same-owner ca.crt ca.key password values || die "$file is not what standby --for writes"
    read_invitation
    if is_standby && is_running && [ -z "${opt[take-back]:-}" ]; then
        refresh_standby
    else
        make_standby
    fi
    rely_on_us
    say "This machine is the standby: each sale is on both machines before the till counts it as done."
}

read_invitation() {
    local key value
    server=$(sed -n 's/^server=//p' "$invitation/values")
    server_port=$(sed -n 's/^server_port=//p' "$invitation/values")
    [ "$server:$server_port" != "${machine[address]:-}:${machine[port]:-}" ] ||
        grep -qx "name=${machine[name]}" "$invitation/values" ||
        die "this machine is the server itself: what it has written is for $(sed -n 's/^name=//p' "$invitation/values")"
    [ ! -f "$etc/ca.crt" ] || [ ! -d "$conf" ] || cmp -s "$etc/ca.crt" "$invitation/ca.crt" || [ -n "${opt[take-back]:-}" ] ||
        die "this machine belongs to another server's shop"
    while IFS='=' read -r key value; do
        case $key in
            name | address | network | tills) machine["$key"]=$value ;;
            version)
                [ -d "$conf" ] || machine[version]=$value
                [ "${machine[version]}" = "$value" ] || die "the server is PostgreSQL $value, this machine ${machine[version]}"
                ;;
        esac
    done <"$invitation/values"
    check_name "${machine[name]}"
    check_address "${machine[address]}"
    check_network "${machine[network]}"
    check_address "$server"
    check_number "$server_port"
    find_server
    need_server
    [ -x "$programs/postgres" ] || die "the package postgresql-$version is missing"
    [ -z "${opt[port]:-}" ] || {
        check_number "${opt[port]}"
        [ -d "$conf" ] || machine[port]=${opt[port]}
    }
}

# The server, as this machine's login there. Arguments as psql's.
on_server() {
    "$programs/psql" -X -q -A -t -v ON_ERROR_STOP=1 "host=$server port=$server_port dbname=$database
        user=standby_${machine[name]} passfile=$invitation/pgpass sslmode=verify-full sslrootcert=$invitation/ca.crt
        connect_timeout=5 options='-c statement_timeout=20s'" "$@"
}

reach_server() {
    (umask 077 && printf '*:*:*:*:%s\n' "$(cat "$invitation/password")" >"$invitation/pgpass")
    [ "$(on_server -c 'select pg_is_in_recovery()')" = f ] || die "the server at $server does not answer, or is a standby itself"
}

# Settings that the standby needs at least as high as the server has them.
follow_room() {
    local most
    most=$(on_server -c "select setting::int from pg_settings where name = 'max_connections'")
    while (($(room_for "${machine[tills]}") < most)); do
        machine[tills]=$((machine[tills] + 1))
    done
}

write_following() {
    put "$conf/standby.pgpass" 600 "$owner" <"$invitation/pgpass"
    put "$conf/server-ca.crt" 644 "$owner" <"$invitation/ca.crt"
    put "$conf/conf.d/standby.conf" 644 "$owner" <<FOLLOWING
# Written by harrowby-server: whom this standby follows.
primary_conninfo = 'host=$server port=$server_port user=standby_${machine[name]} passfile=$conf/standby.pgpass sslmode=verify-full sslrootcert=$conf/server-ca.crt application_name=${machine[name]} connect_timeout=5'
primary_slot_name = 'standby_${machine[name]//-/_}'
recovery_target_timeline = 'latest'
FOLLOWING
}

take_keys() {
    install -d -m 755 "$etc"
    put "$etc/ca.crt" 644 "$(id -un)" <"$invitation/ca.crt"
    put "$etc/ca.key" 600 "$(id -un)" <"$invitation/ca.key"
}

# It may also be told to follow another server, the one that was promoted beside it.
refresh_standby() {
    local slot=standby_${machine[name]//-/_}
    reach_server
    rm -f "$etc/relied-on" # it may be another server's
    on_server -v slot="$slot" -f - >/dev/null <<'SQL'
select pg_create_physical_replication_slot(:'slot', true)
    where not exists (select from pg_replication_slots where slot_name = :'slot');
SQL
    follow_room
    take_keys
    make_certificate
    write_settings
    write_following
    save_machine
    use_settings
}

make_standby() {
    local slot=standby_${machine[name]//-/_} make_slot=(-C) copy=$data.copying
    reach_server
    set_aside_old
    rm -f "$etc/relied-on" # that was the copy before
    take_keys
    save_machine
    [ -d "$conf" ] && ! is_half_made || make_cluster
    follow_room
    save_machine
    make_certificate
    [ -z "$(on_server -c "select 1 from pg_replication_slots where slot_name = '$slot'")" ] || make_slot=()
    say "Copying the server's store ..."
    rm -rf "$copy" # what an earlier try has left
    as_owner_folder "$copy"
    put "$conf/standby.pgpass" 600 "$owner" <"$invitation/pgpass"
    put "$conf/server-ca.crt" 644 "$owner" <"$invitation/ca.crt"
    as_owner "$programs/pg_basebackup" -D "$copy" -X stream -c fast ${unsynced:+"$unsynced"} "${make_slot[@]}" -S "$slot" \
        -d "host=$server port=$server_port user=standby_${machine[name]} passfile=$conf/standby.pgpass
            sslmode=verify-full sslrootcert=$conf/server-ca.crt connect_timeout=5" ||
        die "the copy failed; the server goes on. Do it again"
    write_following
    write_settings
    as_owner touch "$copy/standby.signal"
    keep_aside "$data"
    rm -f "$etc/making"
    mv "$copy" "$data"
    start_server
    # Its own list is for the day on which it is the server.
    sql_in_postgres -c 'alter system reset synchronous_standby_names'
    control reload
}

as_owner_folder() {
    install -d -m 700 "$1"
    [ "$(id -u)" -ne 0 ] || chown "$owner:" "$1"
}

# A machine that has sold itself before, or a standby that cannot follow any more: its data is kept.
set_aside_old() {
    if [ ! -d "$conf" ] || is_half_made; then
        return 0
    fi
    is_ours || die "there is a cluster '$cluster' that was not made here ($conf); it is not touched"
    [ -d "$data" ] || return 0
    [ -n "${opt[take-back]:-}" ] || die "this machine has a server with data. To make it the standby of $server, with --take-back:
    its data is then kept aside, and the server's is copied"
    stop_server
}

# Moves what is there to a name of its own.
keep_aside() {
    local kept
    [ -d "$1" ] || return 0
    if is_half_made; then
        rm -rf "${1:?}"
        return 0
    fi
    kept=$1.kept-$(date -u +%Y%m%dT%H%M%S)
    mv "$1" "$kept"
    say "What this machine held before is kept: $kept"
}

# From here on the server waits for this machine before it confirms a write.
rely_on_us() {
    local second state="" names
    for ((second = 1; second <= 600; ++second)); do
        state=$(on_server -v name="${machine[name]}" -f - <<'SQL'
select 'ready' from pg_stat_replication where application_name = :'name' and state = 'streaming'
    and pg_wal_lsn_diff(pg_current_wal_lsn(), flush_lsn) < 1000000;
SQL
        )
        [ "$state" != ready ] || break
        ((second % 60)) || say "Still catching up ..."
        sleep 1
    done
    [ "$state" = ready ] || die "this machine does not catch up with the server; its log: $server_log
    Was it the server before? Then with --take-back"
    names=$(on_server -c 'show synchronous_standby_names' | grep -o '"[^"]*"' || true)
    names=$(printf '%s\n' "$names" "\"${machine[name]}\"" | grep . | sort -u | paste -sd,)
    on_server -c "alter system set synchronous_standby_names = 'FIRST 1 ($names)'" -c 'select pg_reload_conf()' >/dev/null
    on_server -v name="${machine[name]}" -v address="${machine[address]}" -v port="${machine[port]}" -f - >/dev/null <<'SQL'
select harrowby_server.know_host(:'name', :'address', :'port'::int);
delete from harrowby_server.remark where name = 'alone';
SQL
    date -u +%Y-%m-%dT%H:%M:%SZ | put "$etc/relied-on" 644 "$(id -un)"
}
