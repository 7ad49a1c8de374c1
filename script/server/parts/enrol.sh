# shellcheck shell=bash
# Tills and offices: a login each, and the files with which a machine gets in.

do_add_till() { add_login till "$@"; }
do_add_office() { add_login office "$@"; }
do_remove_till() { remove_login till "$@"; }
do_remove_office() { remove_login office "$@"; }

# add_login till|office ARGUMENT…
add_login() {
    local kind=$1 name role folder password=
    take_options "to: new-password owner" "${@:2}"
    ((${#rest[@]} == 1)) || misused "add-$kind takes one name"
    name=${rest[0]}
    check_name "$name"
    role=${kind}_$name
    [ -z "${opt[owner]:-}" ] || [ "$kind" = office ] || misused "--owner is for an office"
    need_primary
    need_writable
    folder=$(absolute "${opt[to]:-$role}")
    check_folder "$folder" "$role"
    if [ -z "$(sql -c "select 1 from pg_roles where rolname = '$role'")" ]; then
        check_room
        sql -c "create role \"$role\" login in role harrowby_$kind connection limit 8"
        opt[new-password]=yes
    fi
    [ -z "${opt[owner]:-}" ] || sql -c "grant harrowby_owner to \"$role\""
    forget_logins
    if [ -n "${opt[new-password]:-}" ]; then
        password=$(random_word)
        set_password "$role" "$password"
    fi
    write_login "$folder" "$role" "$password"
    say "Written to $folder. Carry it to the $kind on a stick, run there, as the user who ${kind_work[$kind]}:"
    say "    sh ./install"
    say "then 'harrowby ${kind_call[$kind]}'. Delete the folder on the stick afterwards."
    [ -n "$password" ] || say "The password stays as it was; --new-password makes a new one."
}
declare -A kind_work=([till]="sells" [office]="works in the office") kind_call=([till]="--database service=harrowby"
    [office]="--office --database service=harrowby-office")

# Those that a restore kept and did not come to give back are no longer what is true.
forget_logins() { rm -f "$etc/logins"; }

# The word goes neither into a command line nor into the server's log.
set_password() {
    sql -f - <<SQL
set log_statement = 'none';
set log_min_error_statement = 'panic';
alter role "$1" password '$2';
SQL
    forget_logins
}

check_room() {
    local enrolled room
    enrolled=$(sql -c "select count(*) from pg_auth_members m join pg_roles r on r.oid = m.roleid
        where r.rolname in ('harrowby_till', 'harrowby_office')")
    room=$(sql -c "select setting::int from pg_settings where name = 'max_connections'")
    (($(room_for $((enrolled + 1))) <= room)) || die "the server has room for $enrolled tills and offices. For more, when nobody sells:
    harrowby-server update --tills N, and a restart of the server; first on the standby, where there is one, then here"
}

# All machines of the shop, the one that sells now first.
hosts_as() {
    sql -v here="${machine[name]}" -f - <<SQL
select string_agg($1::text, ',' order by name <> :'here', known_since) from harrowby_server.host;
SQL
}

# Nobody's way in is overwritten by another's.
check_folder() {
    local folder=$1 role=$2
    [ ! -f "$folder/service" ] || grep -qx "user=$role" "$folder/service" ||
        die "$folder is what $(sed -n 's/^user=//p' "$folder/service") needs; choose another folder with --to"
}

# Without a password the file on the till stays.
write_login() {
    local folder=$1 role=$2 password=$3
    [ -d "$folder" ] || {
        install -d -m 700 "$folder"
        for_carrying "$folder"
    }
    put "$folder/service" 600 "$(id -un)" <<SERVICE
host=$(hosts_as address)
port=$(hosts_as port)
dbname=$database
user=$role
sslmode=verify-full
connect_timeout=2
SERVICE
    if [ -n "$password" ]; then
        printf '*:*:%s:%s:%s\n' "$database" "$role" "$password" | put "$folder/password" 600 "$(id -un)"
    fi
    put "$folder/ca.crt" 600 "$(id -un)" <"$etc/ca.crt"
    put "$folder/install" 700 "$(id -un)" <"$here/install-login"
    for_carrying "$folder"/{service,ca.crt,install}
    [ ! -f "$folder/password" ] || for_carrying "$folder/password"
}

remove_login() {
    local kind=$1 role
    take_options "" "${@:2}"
    ((${#rest[@]} == 1)) || misused "remove-$kind takes one name"
    check_name "${rest[0]}"
    role=${kind}_${rest[0]}
    need_primary
    need_writable
    [ -n "$(sql -c "select 1 from pg_roles where rolname = '$role'")" ] || die "there is no $kind ${rest[0]}"
    sql -f - <<SQL
alter role "$role" nologin;
select pg_terminate_backend(pid) from pg_stat_activity where usename = '$role' \g /dev/null
drop role "$role";
SQL
    forget_logins
    say "The $kind ${rest[0]} does not get in any more."
}
