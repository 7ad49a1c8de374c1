# shellcheck shell=bash
# restore: a backup, and the log up to a moment, become a cluster of their own beside the one that there is; only when that
# stands and has been looked at does it take the other's place, and the other is kept.

do_restore() {
    local folder base until_time line stamp written
    take_options "from: time:" "$@"
    takes_nothing_else restore
    need_ours
    ! is_automatic || die "first, on each machine, the server last: harrowby-server automatic --off"
    ! is_standby || die "this machine is the standby: restore on the server, then make the standby anew"
    folder=${opt[from]:-${machine[backup]:-}}
    [ -n "$folder" ] || misused "restore needs --from FOLDER"
    folder=$(absolute "$folder")
    check_folder_name "$folder"
    answers "$folder" || die "$folder does not answer: is the machine that it is on switched on?"
    if [ ! -d "$folder/base" ] || [ ! -d "$folder/log" ]; then
        die "$folder holds no backups"
    fi
    { as_owner test -r "$folder/log" && as_owner test -x "$folder/log"; } ||
        die "the server cannot read $folder: it belongs to a user of another machine.
    chown $owner: $folder && chown -R $owner: $folder/base $folder/log, then this once more"
    [ -z "$(who_sells)" ] || die "these are connected: $(who_sells). Close the programs first, as what they write now would not be in
    the store that is restored. Where one is not there any more: pg_ctlcluster $version $cluster restart"
    written=$(written_so_far)
    until_time=$(moment_of "${opt[time]:-}")
    lock_backups
    keep_left_log
    ! is_running || finish_log "$folder"
    line=$(timeline_at "$folder" "$until_time")
    base=$(base_before "$folder" "$until_time" "$line")
    stamp=$(date -u +%Y%m%dT%H%M%S)
    restored=$data.restored
    need_room "$folder/base/$base"
    say "Restoring from $base (UTC) ..."
    lay_out "$folder" "$base" "$until_time" "$line"
    run_restored "$until_time"
    look_at_restored
    swap_in "$stamp"
    keep_restored_log
}

# A time of the shop's clock as the server understands it, in UTC and to the second; empty for the latest there is.
moment_of() {
    local second
    [ -n "$1" ] || return 0
    second=$(date -d "$1" +%s 2>/dev/null) || misused "'$1' is no time; one looks like '2026-11-22 18:30:00'"
    date -u -d "@$second" +'%Y-%m-%d %H:%M:%S'
}

# The last backup that the way to the timeline leads through: one may be of a past that was left by a restore.
base_before() {
    local found="" one
    while read -r one; do
        ! leads_to "$1" "$one" "$3" || found=$one
    done < <(backups_until "$1" "$2")
    [ -n "$found" ] || die "$1 holds no backup${2:+ from before $2 (UTC)} that leads to what is asked for"
    printf '%s' "$found"
}

backups_until() {
    local one limit=${2//[-: ]/}
    backups_in "$1" | while read -r one; do
        if [ -z "$limit" ] || [[ ! $(tr -dc 0-9 <<<"$one") > $limit ]]; then
            printf '%s\n' "$one"
        fi
    done
}

started_on() { sed -nE 's/^START TIMELINE: ([0-9]+)$/\1/p' "$1/base/$2/backup_label"; }

# leads_to FOLDER BACKUP TIMELINE: it is of this timeline, or of one that the timeline left after the backup's end.
leads_to() {
    local own end left
    own=$(started_on "$1" "$2")
    [ "$own" != "$3" ] || return 0
    end=$(sed -nE 's/.*"End-LSN": "([0-9A-F/]+)".*/\1/p' "$1/base/$2/backup_manifest" | tail -n 1)
    left=$(awk -v own="$own" '$1 == own { print $2 }' "$1/log/$(printf %08X "$3").history" 2>/dev/null || true)
    [ -n "$end" ] && [ -n "$left" ] && (($(place_of "$end") <= $(place_of "$left")))
}

place_of() { printf '%d' $((16#${1%/*} * 2 ** 32 + 16#${1#*/})); }

need_room() {
    local needed free
    needed=$(du -sk "$1" | cut -f 1)
    free=$(df -Pk "$(dirname "$data")" | awk 'NR == 2 { print $4 }')
    ((free > needed + needed / 4)) || die "the disk of $data has too little room: $needed KB are needed, $free KB free"
}

# What the server that still runs has written belongs to the log as well.
finish_log() {
    [ -n "${machine[backup]:-}" ] && [ "${machine[backup]}" -ef "$1" ] || return 0
    keep_log
}

lay_out() {
    rm -rf "$restored" # what an earlier try has left
    as_owner_folder "$restored"
    # Its owner may have been a user of another machine.
    cp -a --no-preserve=ownership "$1/base/$2/." "$restored/"
    [ "$(id -u)" -ne 0 ] || chown -R "$owner:" "$restored"
    rm -rf "$restored.log"
    as_owner_folder "$restored.log"
    as_owner_folder "$restored.socket"
    put "$restored/pg_hba.conf" 600 "$owner" <<<"local all $owner peer"
    : | put "$restored/pg_ident.conf" 600 "$owner"
    # On its way it takes no connection but ours. Its log stays beside it: in the shop's, its timeline would be the one that
    # is restored from then on, also where it never becomes the server.
    put "$restored/postgresql.conf" 600 "$owner" <<SETTINGS
listen_addresses = ''
unix_socket_directories = '$restored.socket'
port = ${machine[port]}
max_connections = $(room_for "${machine[tills]}")
max_wal_senders = 10
hot_standby = off
wal_level = replica
fsync = $([ -n "$unsynced" ] && echo off || echo on)
archive_mode = on
archive_command = '"$here/archive-log" "%p" "%f" "$restored.log"'
restore_command = 'test -f "$1/log/%f" && cp "$1/log/%f" "%p"'
recovery_target_timeline = '$4'
SETTINGS
    keep_timelines_free "$1" "$4"
    [ -z "$3" ] || printf "recovery_target_time = '%s+00'\nrecovery_target_action = 'promote'\n" "$3" >>"$restored/postgresql.conf"
    as_owner touch "$restored/recovery.signal"
}

# timelines_in FOLDER [TIME]: those that had begun by then.
timelines_in() {
    find "$1" -maxdepth 1 -name '????????.history' ${2:+! -newermt "$2 UTC"} -printf '%f\n' | while read -r name; do echo $((16#${name%.history})); done
}

# The latest of what the backups and the log hold; with a time, the latest then: what was restored later is another past. The
# server's own "latest" stops at the first number that is missing, as one is where a standby was promoted that did not make
# the backups.
timeline_at() {
    local one
    {
        backups_until "$1" "$2" | while read -r one; do started_on "$1" "$one"; done
        timelines_in "$1/log" "$2"
    } | sort -n | tail -n 1
}

# A till takes no server on a lower timeline than it has worked on. So the restored one begins above all that are known
# here, and somewhat above them, as another machine may have been promoted meanwhile: the server passes over numbers that
# have a file.
keep_timelines_free() {
    local known number
    known=$(
        {
            timeline_at "$1" ""
            [ ! -d "$data" ] || LC_ALL=C as_owner "$programs/pg_controldata" "$data" | sed -nE "s/^Latest checkpoint's TimeLineID: *([0-9]+)$/\1/p"
            [ ! -d "$data" ] || timelines_in "$data/pg_wal"
        } | sort -n | tail -n 1
    )
    for ((number = $2 + 1; number <= known + 16; ++number)); do
        as_owner touch "$restored/pg_wal/$(printf %08X "$number").history"
    done
}

# 0 when it has come to its end and takes statements, 1 when it has stopped. A long log takes hours.
start_restored() {
    local second
    as_owner "$programs/pg_ctl" -s -w -t 600 -D "$restored" -l "$restored/restoring.log" \
        -o "-c synchronous_standby_names=''" start >/dev/null 2>&1 9>&- 8>&- || true
    for ((second = 1; ; ++second)); do
        [ "$(sql_restored -c 'select pg_is_in_recovery()' 2>/dev/null)" != f ] || return 0
        as_owner "$programs/pg_ctl" -D "$restored" status >/dev/null || return 1
        ((second % 60)) || say "Still restoring ..."
        sleep 1
    done
}

# A time after the last change means all of it; the server calls that an error.
run_restored() {
    ! start_restored || return 0
    if [ -n "$1" ] && grep -q 'recovery ended before configured recovery target was reached' "$restored/restoring.log"; then
        sed -i '/^recovery_target_time =/d; /^recovery_target_action/d' "$restored/postgresql.conf"
        ! start_restored || return 0
    fi
    die "the backup cannot be restored: $restored/restoring.log says why. The server is as it was"
}

sql_restored() {
    as_owner "$programs/psql" -X -q -A -t -v ON_ERROR_STOP=1 -h "$restored.socket" -p "${machine[port]}" -U "$owner" -d "$database" "$@"
}

look_at_restored() {
    say "It holds $(sql_restored -c "select count(*) from harrowby.stocklist") items and $(sql_restored -c "select count(*)
        from harrowby.purchasecart") purchases, the last of $(sql_restored -c "select coalesce(max(purchaseddate), 'no day')
        from harrowby.purchasecart") (year, month, day, hour, minute, second)."
    sql_restored -c 'alter system reset synchronous_standby_names'
    as_owner "$programs/pg_ctl" -s -w -t 600 -D "$restored" -m fast stop || die "the restored cluster does not stop: $restored/restoring.log"
    rm -rf "$restored.socket" "$restored/postgresql.conf" "$restored/pg_hba.conf" "$restored/pg_ident.conf" "$restored/postmaster.opts"
}

# Tills and offices that are connected, by their logins.
who_sells() {
    ! is_running || sql -c "select string_agg(distinct a.usename, ' ' order by a.usename) from pg_stat_activity a
        join pg_roles m on m.rolname = a.usename join pg_auth_members b on b.member = m.oid join pg_roles g on g.oid = b.roleid
        where g.rolname in ('harrowby_till', 'harrowby_office')"
}
# A program that was not closed comes back by itself when it can.
wait_until_closed() {
    local who second
    for ((second = 0; second < ${HARROWBY_SERVER_PATIENCE:-3600}; ++second)); do
        who=$(who_sells)
        [ -n "$who" ] || return 0
        ((second % 60)) || say "Waiting until these are closed: $who"
        sleep 1
    done
    die "not restored: $who is still connected. The server is as it was"
}

# How much was ever written into the shop's tables. Who only logged in and looked has written nothing that would be missed.
written_so_far() {
    ! is_running || sql -c "select coalesce(sum(n_tup_ins + n_tup_upd + n_tup_del), 0) from pg_stat_user_tables
        where schemaname = 'harrowby' and relname not in ('sysusage', 'harrowbyactivity', 'harrowbyrun', 'writer_action')"
}

# Who was let in or shut out since the backup stays so. Only for a store with the same past: a new machine takes the logins of
# the one whose place it takes. The passwords are as the server keeps them, not as they are typed.
write_logins() {
    sql -f - <<'SQL'
select 'do $do$ declare role text; begin
    for role in select rolname from pg_roles where rolname ~ ''^(till|office|standby)_'' and not rolname = any (' ||
    quote_literal(coalesce(array_agg(rolname), '{}')) || ') loop
        execute format(''alter role %I nologin password null'', role);
        begin
            execute format(''drop role %I'', role);
        exception when dependent_objects_still_exist then null;
        end;
    end loop;
end $do$;' from pg_roles where rolname ~ '^(till|office|standby)_';
select format('select %L where not exists (select from pg_roles where rolname = %L) \gexec', format('create role %I', rolname), rolname) ||
    format(E'\nalter role %I %s %s connection limit %s password %L;', rolname,
        case when rolcanlogin then 'login' else 'nologin' end, case when rolreplication then 'replication' else 'noreplication' end,
        rolconnlimit, rolpassword) ||
    format(E'\nrevoke harrowby_till, harrowby_office, harrowby_standby, harrowby_owner from %I;', rolname) ||
    coalesce((select string_agg(format(E'\ngrant %I to %I;', g.rolname, a.rolname), '') from pg_auth_members m
        join pg_roles g on g.oid = m.roleid where m.member = a.oid), '')
    from pg_authid a where rolname ~ '^(till|office|standby)_' order by rolname;
SQL
}
# keep_logins KEPT: on the disk, as the server that knows them goes now. Where an earlier try was broken off after that one had
# gone, the server that runs is a restored one, and does not know them.
keep_logins() {
    local left logins
    left=$(told_of_logins)
    [ -z "$left" ] || [ ! -d "$left" ] || return 0
    logins=$(write_logins)
    printf -- '-- %s\n%s\n' "$1" "$logins" | put "$etc/logins" 600 "$(id -un)"
}
told_of_logins() { sed -n '1s/^-- //p' "$etc/logins" 2>/dev/null || true; }
past() { LC_ALL=C as_owner "$programs/pg_controldata" "$1" | sed -n 's/^Database system identifier: *//p'; }

swap_in() {
    local kept=$data.kept-$1 many same= before=$data
    [ -d "$before" ] || before=$(told_of_logins) # where an earlier try ended just before the restored one came
    [ ! -d "$before" ] || [ "$(past "$before")" != "$(past "$restored")" ] || same=yes
    if is_running; then
        wait_until_closed
        [ -z "$written" ] || [ "$(written_so_far)" = "$written" ] ||
            die "not restored: something was sold or changed while the store was being restored, and would be missing from it.
    The server is as it was; this once more, with all programs closed"
        [ -z "$same" ] || keep_logins "$kept"
        # The standby must not be promoted any more, as what is sold from now on is not there. It may be gone, too.
        many=$(sql -c 'select count(*) from harrowby_server.host')
        ((many < 2)) || sql -c 'set synchronous_commit = local' -c "insert into harrowby_server.remark (name, value)
            values ('alone', 'restored') on conflict (name) do update set value = 'restored', since = now()"
    fi
    stop_server
    [ ! -d "$data" ] || {
        mv "$data" "$kept"
        say "What the server held before is kept: $kept"
    }
    mv "$restored" "$data"
    start_server
    know_itself
    if [ -n "$same" ] && [ -f "$etc/logins" ]; then
        {
            printf "set log_min_error_statement = 'panic'; set client_min_messages = error;\n"
            cat "$etc/logins"
        } | sql -f - >/dev/null
    else
        say "Let in are those that were when the backup was made: harrowby-server remove-till, where one was shut out since."
    fi
    rm -f "$etc/logins"
    say "The server has the restored store."
    if [ "$(sql -c 'select count(*) from harrowby_server.host')" -gt 1 ]; then
        sql -c "insert into harrowby_server.remark (name, value) values ('alone', 'restored')
            on conflict (name) do update set value = 'restored', since = now()"
        say "The standby has another past now. Make it anew: here standby --for NAME …, there standby FILE --take-back"
    fi
}

# From here on it is the shop's. A backup made before this has come to its end makes up for it.
keep_restored_log() {
    local piece
    [ -z "${machine[backup]:-}" ] || answers "${machine[backup]}" || {
        warn "${machine[backup]} does not answer, so that the restored store's log is not there: harrowby-server backup, and soon"
        return 0
    }
    [ -z "${machine[backup]:-}" ] || find "$restored.log" -type f ! -name '*.part' -printf '%f\n' | sort -r | while read -r piece; do
        as_owner "$here/archive-log" "$restored.log/$piece" "$piece" "${machine[backup]}/log" ||
            warn "$piece of its log does not get into ${machine[backup]}/log: harrowby-server backup, and soon"
    done
    rm -rf "$restored.log"
}
# That of a restore that was broken off when it had become the server already.
keep_left_log() {
    restored=$data.restored
    [ ! -d "$restored.log" ] || [ -d "$restored" ] || keep_restored_log
}

# The backup knows the machines of its day. One that is not among them stands in the place of all of them.
know_itself() {
    sql -v name="${machine[name]}" -v address="${machine[address]}" -v port="${machine[port]}" -f - >/dev/null <<'SQL'
delete from harrowby_server.host where not exists (select from harrowby_server.host where name = :'name');
select harrowby_server.know_host(:'name', :'address', :'port'::int);
SQL
}
