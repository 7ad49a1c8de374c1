# shellcheck shell=bash
# promote: the standby becomes the server. alone: the server goes on without its standby.

do_promote() {
    take_options "other-is-off without-what-it-lacks" "$@"
    takes_nothing_else promote
    need_running
    if is_automatic; then
        promote_automatically
        return 0
    fi
    if ! is_standby; then
        say "This machine is the server already."
        return 0
    fi
    refuse_while_other_answers
    tell_what_is_here
    insist_other_is_off
    sql_in_postgres -c 'select pg_promote(true, 60)' >/dev/null
    [ "$(sql_in_postgres -c 'select pg_is_in_recovery()')" = f ] || die "the promotion is not through yet; see harrowby-server status"
    rm -f "$conf/conf.d/standby.conf" "$conf/standby.pgpass" "$etc/relied-on"
    sql -c "insert into harrowby_server.remark (name, value) values ('alone', 'promoted')
        on conflict (name) do update set value = 'promoted', since = now()"
    say "This machine is the server now, and goes on alone; the tills find it by themselves."
    say "When the other one is repaired: here 'harrowby-server standby --for NAME --address ADDRESS', there"
    say "'harrowby-server standby FILE --take-back'. Before it gets its network back, on it: pg_ctlcluster $version $cluster stop"
}

refuse_while_other_answers() {
    local where address port
    where=$(sql_in_postgres -c 'show primary_conninfo')
    if [ -n "$where" ]; then
        refuse_while_answers "$(value_of host "$where")" "$(value_of port "$where")"
        return 0
    fi
    # It follows nobody and cannot ask any more which of the others is the server.
    while IFS='|' read -r address port; do
        refuse_while_answers "$address" "$port"
    done < <(sql -v own="${machine[name]}" -f - <<<"select address, port from harrowby_server.host where name <> :'own' order by name")
}

refuse_while_answers() {
    local status=0
    "$programs/pg_isready" -q -t 3 -h "$1" -p "$2" || status=$?
    ((status == 2)) || die "the server at $1 still answers. Switch that machine off first:
    two that sell at once are two different stores"
}

value_of() { sed -E "s/.*(^| )$1=([^ ]+).*/\2/" <<<"$2"; }

# ask_store ADDRESS PORT SQL: another machine that has the store, with this standby's login.
ask_store() {
    as_owner "$programs/psql" -X -q -A -t "host=$1 port=$2 dbname=$database user=standby_${machine[name]}
        passfile=$conf/standby.pgpass sslmode=verify-full sslrootcert=$conf/server-ca.crt connect_timeout=5" -c "$3" 2>/dev/null
}

# Of several standbys the server relied on one only, and which one is not known to the others.
other_standbys_have() {
    local where name address port ours theirs
    local has="pg_wal_lsn_diff(greatest(pg_last_wal_receive_lsn(), pg_last_wal_replay_lsn()), '0/0')"
    where=$(sql_in_postgres -c 'show primary_conninfo')
    ours=$(sql -c "select $has")
    while IFS='|' read -r name address port; do
        [ "$address $port" != "$(value_of host "$where") $(value_of port "$where")" ] || continue
        theirs=$(ask_store "$address" "$port" "select case when pg_is_in_recovery() then $has else -1 end") || theirs=
        if [ -z "$theirs" ]; then
            printf '%s\n' "$name does not answer, and may have more than this machine."
        elif ((theirs < 0)); then
            die "$name is the server: it sells"
        elif ((theirs > ours)); then
            printf '%s\n' "$name has more than this machine: promote it instead."
        fi
    done < <(sql -v own="${machine[name]}" -f - <<<"select name, address, port from harrowby_server.host where name <> :'own' order by 1")
}

# What this standby is known to lack stops it; what it cannot know is told.
tell_what_is_here() {
    local alone others lacks=()
    alone=$(sql -c "select to_char(since, 'YYYY-MM-DD HH24:MI:SS') from harrowby_server.remark where name = 'alone'")
    [ -z "$alone" ] || lacks+=("The server has gone on alone since $alone; what it has sold from then on may not be here.")
    [ -f "$etc/relied-on" ] || lacks+=("This machine has never caught up with the server.")
    others=$(other_standbys_have)
    [ -z "$others" ] || lacks+=("$others")
    say "The last change that this machine has is of $(sql -c "select coalesce(to_char(pg_last_xact_replay_timestamp(),
        'YYYY-MM-DD HH24:MI:SS'), 'before its last start')")."
    say "If the server was told to go on alone after that, what it sold then is not here."
    ((${#lacks[@]} == 0)) || [ -n "${opt[without-what-it-lacks]:-}" ] || {
        printf '%s\n' "${lacks[@]}" >&2
        die "not promoted. With --without-what-it-lacks it is promoted, and those sales stay on the other machine's disk alone"
    }
}

insist_other_is_off() {
    local answer=
    [ -z "${opt[other-is-off]:-}" ] || return 0
    [ -t 0 ] || die "the other machine must be off: say so with --other-is-off"
    read -r -p "The other machine is switched off, and stays so? Type 'off': " answer
    [ "$answer" = off ] || die "not promoted"
}

do_alone() {
    take_options "off" "$@"
    takes_nothing_else alone
    if is_automatic; then
        go_alone_automatically
        return 0
    fi
    need_primary
    [ "$(sql -c 'select count(*) from harrowby_server.host')" -gt 1 ] || die "this server has no standby"
    if [ -n "${opt[off]:-}" ]; then
        rely_on_standbys
    else
        go_alone
    fi
}

# The setting first, as until then no write is confirmed, not even the remark.
go_alone() {
    sql_in_postgres -c "alter system set synchronous_standby_names = ''" -c 'select pg_reload_conf()' >/dev/null
    remark_alone
    say "The server goes on alone: what is sold from now on is on this machine only, and the tills say so."
    say "Do not promote the standby now. When it is back: harrowby-server alone --off"
}

remark_alone() {
    sql -c "insert into harrowby_server.remark (name, value) values ('alone', 'chosen') on conflict (name) do nothing"
}

rely_on_standbys() {
    local names
    names=$(sql -f - <<'SQL'
select string_agg(format('"%s"', r.application_name), ',' order by r.application_name) from pg_stat_replication r
    join harrowby_server.host h on h.name = r.application_name
    where r.state = 'streaming' and pg_wal_lsn_diff(pg_current_wal_lsn(), r.flush_lsn) < 1000000;
SQL
    )
    [ -n "$names" ] || die "no standby has caught up yet; the server stays alone"
    sql_in_postgres -c "alter system set synchronous_standby_names = 'FIRST 1 ($names)'" -c 'select pg_reload_conf()' >/dev/null
    sql -c "delete from harrowby_server.remark where name = 'alone'"
    say "Each sale is on two machines again."
}

# One that is gone for good: nobody waits for it, keeps the log for it, or tells of it any more.
do_remove_standby() {
    local name role left others known
    take_options "" "$@"
    ((${#rest[@]} == 1)) || misused "remove-standby takes one name"
    name=${rest[0]}
    role=standby_$name
    check_name "$name"
    ! is_automatic || die "the machines copy from each other by themselves. A new machine in place of one: automatic --anew NAME"
    need_primary
    [ "$name" != "${machine[name]}" ] || misused "$name is this machine"
    # One that was invited and never finished has a login, and perhaps a place in the log.
    known=$(sql -v name="$name" -v role="$role" -v slot="${role//-/_}" -f - <<'SQL'
select 1 from harrowby_server.host where name = :'name' union select 1 from pg_roles where rolname = :'role'
    union select 1 from pg_replication_slots where slot_name = :'slot';
SQL
    )
    [ -n "$known" ] || die "there is no standby $name"
    [ -z "$(sql -c "select 1 from pg_stat_activity where usename = '$role' and backend_type = 'walsender'")" ] ||
        die "the standby $name follows. Switch it off first; it must not be promoted afterwards"
    left=$(sql -v name="$name" -f - <<<"select string_agg(format('\"%s\"', name), ',' order by name) from harrowby_server.host
        where name <> :'name' and strpos(current_setting('synchronous_standby_names'), format('\"%s\"', name)) > 0")
    others=$(sql -v name="$name" -v own="${machine[name]}" -f - <<<"select count(*) from harrowby_server.host where name not in (:'name', :'own')")
    # The setting first, as until then no write may be confirmed.
    sql_in_postgres -c "alter system set synchronous_standby_names = '${left:+FIRST 1 ($left)}'" -c 'select pg_reload_conf()' >/dev/null
    sql -v name="$name" -v role="$role" -v slot="${role//-/_}" -f - >/dev/null <<'SQL'
select pg_drop_replication_slot(slot_name) from pg_replication_slots where slot_name = :'slot' and not active;
delete from harrowby_server.host where name = :'name';
drop role if exists :"role";
SQL
    rm -f "$etc/$role"
    forget_logins
    if ((others == 0)); then
        sql -c "delete from harrowby_server.remark where name = 'alone'"
    elif [ -z "$left" ]; then
        remark_alone
    fi
    say "The standby $name is not waited for any more. Its data must not be promoted: what is sold from now on is not there."
}
