# shellcheck shell=bash
# create and update: the server, the database, and the store in it.

do_create() {
    take_options "name: address: network: port: tills: keys:" "$@"
    takes_nothing_else create
    ! is_standby || die "this machine is the standby of another one"
    need_server
    ! is_voter || ! is_ours || [ "${opt[address]:-${machine[address]}}" = "${machine[address]}" ] ||
        die "the machines know each other by their addresses. For another one first, on each: harrowby-server automatic --off"
    remember_choices
    make_cluster
    rm -f "$etc/making"
    need_writable
    save_machine
    if [ -n "${opt[keys]:-}" ]; then
        take_authority "$(absolute "${opt[keys]}")"
    fi
    make_authority
    make_certificate
    write_settings
    start_server
    use_settings
    make_roles
    make_database
    make_store
    sql -v name="${machine[name]}" -v address="${machine[address]}" -v port="${machine[port]}" -f - >/dev/null <<'SQL'
select harrowby_server.know_host(:'name', :'address', :'port'::int);
SQL
    say "The server stands at ${machine[address]}, port ${machine[port]}. Next: harrowby-server add-till NAME"
}

# What was said is kept, so that a repeated create needs no options; what holds already is not changed by half.
remember_choices() {
    local key
    for key in name address network port tills; do
        [ -z "${opt[$key]:-}" ] || {
            [[ $key != @(name|port) ]] || [ -z "${machine[$key]:-}" ] || [ "${machine[$key]}" = "${opt[$key]}" ] ||
                die "the server has $key ${machine[$key]} already"
            machine["$key"]=${opt[$key]}
        }
    done
    : "${machine[name]:=$(hostname -s | tr '[:upper:]' '[:lower:]')}" "${machine[tills]:=10}"
    [ -n "${machine[address]:-}" ] || misused "create needs --address: this machine's address in the shop's network"
    [ -n "${machine[network]:-}" ] || misused "create needs --network: the shop's network, like 192.168.1.0/24"
    check_name "${machine[name]}"
    check_address "${machine[address]}"
    check_network "${machine[network]}"
    check_number "${machine[tills]}"
    [ -z "${machine[port]:-}" ] || check_number "${machine[port]}"
}

# The groups: a till or an office is a login of its own within one.
make_roles() {
    local role
    for role in harrowby_owner harrowby_till harrowby_office harrowby_standby; do
        [ -n "$(sql_in_postgres -c "select 1 from pg_roles where rolname = '$role'")" ] ||
            sql_in_postgres -c "create role $role nologin"
    done
    sql_in_postgres <<'SQL'
set client_min_messages = warning;
grant pg_monitor to harrowby_standby;
grant alter system on parameter synchronous_standby_names to harrowby_standby;
SQL
}

make_database() {
    local found
    found=$(sql_in_postgres -c "select concat_ws(' ', datcollate, datctype, datlocprovider, pg_encoding_to_char(encoding))
        from pg_database where datname = '$database'")
    if [ -z "$found" ]; then
        sql_in_postgres -c "create database $database owner harrowby_owner template template0
            encoding 'UTF8' locale_provider libc lc_collate 'C' lc_ctype 'C'"
    elif [ "$found" != "C C c UTF8" ]; then
        die "the database $database has another locale than C ($found); it is not touched"
    fi
    sql -c "alter database $database set search_path = harrowby, pg_catalog, pg_temp"
    [ "$(sql -c 'show data_checksums')" = on ] || die "the cluster has no checksums; it is not touched"
}

# The tables and all that belongs to them, in one transaction: whole, or as before.
make_store() {
    local tables=${HARROWBY_SERVER_SQL:-$here/sql}
    [ -d "$tables" ] || tables=$here/../../src/postgres/schema
    compgen -G "$tables/*.sql" >/dev/null || die "the store's tables are not there: $tables"
    {
        printf 'set client_min_messages = warning;\nbegin;\nselect pg_advisory_xact_lock(7285);\n'
        printf 'create schema if not exists harrowby authorization harrowby_owner;\n'
        printf 'grant usage on language plpgsql to harrowby_owner;\n'
        printf 'set local role harrowby_owner;\nset local search_path = harrowby, pg_catalog, pg_temp;\n'
        cat "$tables"/*.sql
        printf 'reset role;\nset local search_path = pg_catalog;\n'
        cat "$here/keeping.sql" "$here/rights.sql"
        printf 'commit;\n'
    } | sql -f - >/dev/null
}

do_update() {
    take_options "tills:" "$@"
    takes_nothing_else update
    need_running
    need_writable
    if [ -n "${opt[tills]:-}" ]; then
        check_number "${opt[tills]}"
        machine[tills]=${opt[tills]}
        ! is_automatic || change_agreed "postgresql.parameters.max_connections=$(room_for "${machine[tills]}")"
    fi
    save_machine
    make_certificate
    write_settings
    if [ -n "${opt[tills]:-}" ] && ! is_standby && [ "$(sql -c 'select count(*) from harrowby_server.host')" -gt 1 ]; then
        warn "the standby needs this room before the server has it: update --tills there, and its restart, come first"
    fi
    use_settings
    if is_standby; then
        say "The standby's settings are up to date; the store's tables come from the server by themselves."
        return 0
    fi
    make_roles
    make_store
    say "The server and its store are up to date."
}
