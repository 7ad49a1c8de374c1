# shellcheck shell=bash
# status: how the server of this machine is, a line a thing; what needs looking at begins with "!".

do_status() {
    troubles=0
    take_options "" "$@"
    ((${#rest[@]} == 0)) || misused "status takes nothing"
    if ! is_ours && is_voter; then
        say "Machine ${auto[name]}, a voter"
        tell_voters
        ((troubles == 0)) || exit 1
        exit 0
    fi
    need_ours
    say "Machine ${machine[name]}, ${machine[address]} port ${machine[port]}, PostgreSQL $version"
    if ! is_running; then
        trouble "The server does not run; its log: $server_log"
    elif is_standby; then
        tell_standby
    else
        tell_server
    fi
    ! is_voter || tell_voters
    tell_certificate
    tell_disk
    ((troubles == 0)) || exit 1
}

trouble() {
    say "! $*"
    troubles=$((troubles + 1))
}

tell_server() {
    local protection name
    protection=$(sql -c 'select harrowby.protection()')
    case $protection in
        single) say "It sells, without a standby: when this machine dies, what counts is the last backup." ;;
        protected) say "It sells, and each sale is on two machines before it counts." ;;
        waiting) trouble "NOTHING IS SOLD: the standby is gone. Repair it, or: harrowby-server alone" ;;
        alone) if is_automatic; then
            trouble "It sells alone until a standby has caught up: what it sells now is on this machine only"
        else
            trouble "It sells alone since $(sql -c "select coalesce(max(to_char(since, 'YYYY-MM-DD HH24:MI')), '?')
            from harrowby_server.remark where name = 'alone'"): what it sells now is on this machine only. Where a standby
  is named below that is not behind: harrowby-server alone --off"
        fi ;;
    esac
    sql -f - <<'SQL'
select format('Standby %s: %s, %s behind', application_name, state, pg_size_pretty(pg_wal_lsn_diff(pg_current_wal_lsn(), flush_lsn)))
    from pg_stat_replication where application_name <> 'pg_basebackup' order by 1;
select format('Tills and offices: %s let in, %s connected', count(distinct r.oid), count(distinct a.usename))
    from pg_auth_members m join pg_roles g on g.oid = m.roleid and g.rolname in ('harrowby_till', 'harrowby_office')
    join pg_roles r on r.oid = m.member left join pg_stat_activity a on a.usename = r.rolname;
select format('Connections: %s of %s', count(*), current_setting('max_connections')) from pg_stat_activity where backend_type = 'client backend';
SQL
    while read -r name; do
        trouble "The standby $name does not follow"
    done < <(sql -v own="${machine[name]}" -f - <<<"select name from harrowby_server.host
        where name <> :'own' and name not in (select application_name from pg_stat_replication) order by 1")
    is_automatic || tell_standbys_by_hand
    tell_backup
}

# Patroni relies on one at a time, and keeps no place in the log for one that is not there.
tell_standbys_by_hand() {
    local name
    while read -r name; do
        trouble "The standby $name follows, and no sale waits for it: harrowby-server alone --off"
    done < <(sql -f - <<<"select r.application_name from pg_stat_replication r join harrowby_server.host h on h.name = r.application_name
        where r.state = 'streaming' and r.sync_state = 'async' and current_setting('synchronous_standby_names') <> '' order by 1")
    while read -r name; do
        trouble "The log is kept for ${name#standby_}, which was never finished: there harrowby-server standby FILE, or here remove-standby ${name#standby_}"
    done < <(sql -f - <<<"select coalesce(r.rolname, s.slot_name) from pg_replication_slots s
        left join pg_roles r on replace(r.rolname, '-', '_') = s.slot_name
        where not s.active and s.slot_name like 'standby\_%' and not exists (select from harrowby_server.host
            where 'standby_' || replace(name, '-', '_') = s.slot_name) order by 1")
}

tell_backup() {
    local last age failed gap
    if [ -z "${machine[backup]:-}" ]; then
        trouble "There are no backups: harrowby-server backup --to FOLDER --timer 02:30"
        return 0
    fi
    if ! answers "${machine[backup]}"; then
        trouble "${machine[backup]} does not answer. Until it does, the server keeps its log to itself"
        return 0
    fi
    if [ ! -d "${machine[backup]}/base" ] || [ ! -d "${machine[backup]}/log" ]; then
        trouble "${machine[backup]} is not there, or no place of backups any more. Until it is, the server keeps its log to itself"
        return 0
    fi
    last=$(backups_in "${machine[backup]}" | tail -n 1)
    if [ -z "$last" ]; then
        trouble "No backup is left in ${machine[backup]}"
        return 0
    fi
    age=$((($(date +%s) - $(stat -c %Y "${machine[backup]}/base/$last/backup_manifest")) / 3600))
    if ((age > 48)); then
        trouble "The last backup is $age hours old: ${machine[backup]}/base/$last"
    else
        say "Last backup: ${machine[backup]}/base/$last, $age hours old"
    fi
    ! on_the_same_disk "${machine[backup]}" || say "The backups are on the disk of the store: when that dies, both are gone."
    gap=$(gap_in "${machine[backup]}")
    [ -z "$gap" ] || trouble "The log in ${machine[backup]}/log has a gap before $gap: harrowby-server backup, and soon"
    failed=$(sql_in_postgres -c "select last_failed_time from pg_stat_archiver where last_failed_time > coalesce(last_archived_time, '-infinity')")
    [ -z "$failed" ] || trouble "The log does not get into ${machine[backup]}/log since $failed; the server's own log says why: $server_log"
}

tell_standby() {
    local following
    following=$(sql -c "select sender_host || ', ' || status from pg_stat_wal_receiver where status = 'streaming'")
    if [ -n "$following" ]; then
        say "It is the standby of $following."
    else
        trouble "It is a standby, and the server that it follows does not answer."
    fi
    say "The last change that it has is of $(sql -c "select coalesce(pg_last_xact_replay_timestamp()::timestamptz(0)::text, 'before its last start')")."
    say "It has the server's log up to position $(sql -c "select pg_wal_lsn_diff(greatest(pg_last_wal_receive_lsn(),
        pg_last_wal_replay_lsn()), '0/0')")."
    is_automatic || [ -f "$etc/relied-on" ] || trouble "It has never caught up: harrowby-server standby FILE once more"
}

tell_voters() {
    local name missing=0
    learn_addresses
    while read -r name; do
        voter_answers "$name" || {
            trouble "The voter $name does not answer"
            missing=$((missing + 1))
        }
    done < <(member_names)
    if voters_agree; then
        name=$(leader) || name=
        if [ -n "$name" ]; then say "The voters have made $name the server."; else trouble "The voters have no server at the moment"; fi
        ((missing == 0)) || say "When one more of them goes, no machine takes over, and none sells."
        ! is_paused || trouble "They were told to stay as they are: no machine takes over. harrowby-server automatic, on one that has the store"
    else
        trouble "The voters do not agree: more than half of them have to be there. Until then nothing is sold"
    fi
    [ "$(openssl x509 -in "$etc/voter.crt" -noout -checkend $((180 * 86400)) >/dev/null; echo $?)" = 0 ] ||
        trouble "This voter's certificate ends soon: harrowby-server automatic --anew ${auto[name]}, on another machine"
}

tell_certificate() {
    openssl x509 -in "$conf/server.crt" -noout -checkend $((180 * 86400)) >/dev/null ||
        trouble "The server's certificate ends on $(openssl x509 -in "$conf/server.crt" -noout -enddate | cut -d = -f 2): harrowby-server update"
}

tell_disk() {
    local free
    free=$(df -Pk "$data" | awk 'NR == 2 { print 100 - $5 }')
    ((free >= 10)) || trouble "Only $free % of the store's disk are free"
}
