# shellcheck shell=bash
# backup: a copy of the whole cluster, and with the log that the server keeps adding beside it, every moment since.
# In the folder: base/TIME (UTC, when it was done), log/ and keys.tar.

do_backup() {
    local folder
    take_options "to: keep: timer: off" "$@"
    takes_nothing_else backup
    if [ -n "${opt[off]:-}" ]; then
        [ -z "${opt[to]:-}${opt[keep]:-}${opt[timer]:-}" ] || misused "backup --off takes nothing else"
        need_ours
        leave_backups
        return 0
    fi
    need_running
    [ -z "${opt[to]:-}" ] || machine[backup]=$(absolute "${opt[to]}")
    [ -z "${opt[keep]:-}" ] || machine[keep]=${opt[keep]}
    [ -n "${machine[backup]:-}" ] || misused "backup needs --to FOLDER the first time: on another disk, or another machine's"
    : "${machine[keep]:=7}"
    check_number "${machine[keep]}"
    ((machine[keep] > 0)) || misused "at least one backup is kept"
    check_folder_name "${machine[backup]}"
    folder=${machine[backup]}
    answers "$folder" || die "$folder does not answer: is the machine that it is on switched on?"
    if [ -n "${opt[to]:-}" ]; then
        make_places "$folder"
    else
        need_places "$folder"
    fi
    save_machine
    [ -z "${opt[timer]:-}" ] || set_timer "${opt[timer]}"
    write_settings
    control reload
    if is_standby; then
        say "This machine is the standby; the one that the tills sell with makes the backups. It will when it is that one."
        exit 3
    fi
    lock_backups
    exec 9>&- # from here on a folder that hangs keeps nobody from promoting or going on alone
    keep_left_log
    keep_log
    copy_cluster "$folder"
    keep_keys "$folder"
    drop_old "$folder" "$made"
    check_log "$folder"
}

# What was kept stays where it is.
leave_backups() {
    local units=$root/etc/systemd/system folder=${machine[backup]:-}
    if [ -f "$units/harrowby-server-backup.timer" ]; then
        [ -n "$root" ] || [ ! -d /run/systemd/system ] || systemctl disable -q --now harrowby-server-backup.timer
        rm -f "$units"/harrowby-server-backup.{timer,service}
        [ -n "$root" ] || [ ! -d /run/systemd/system ] || systemctl daemon-reload
    fi
    machine[backup]=
    save_machine
    write_settings
    ! is_running || control reload # the log that could not be kept may have filled its disk
    say "No backups are made any more.${folder:+ What $folder holds stays there.}"
}

# answers FOLDER: one on another machine may hang, and then nobody can end who looks into it.
answers() {
    local looking tenth
    ls "$1" >/dev/null 2>&1 9>&- 8>&- &
    looking=$!
    for ((tenth = 0; tenth < 100; ++tenth)); do
        kill -0 "$looking" 2>/dev/null || return 0
        sleep 0.1
    done
    return 1
}

lock_backups() {
    exec 8>"$etc/backup-lock"
    flock -n 8 || die "a backup is being made on this machine"
}

# It stands in the server's settings.
check_folder_name() {
    [[ $1 != *[\"\'\\%]* ]] || misused "no quotes, backslashes or % in the folder's name"
}

make_places() {
    local place
    for place in "$1" "$1/base" "$1/log"; do
        [ -d "$place" ] || as_owner_folder "$place" 2>/dev/null ||
            die "the server cannot be given the folder $place. It takes a disk that knows owners, such as one with ext4"
    done
    need_places "$1"
    ! on_the_same_disk "$1" || warn "$1 is on the same disk as the store: when that dies, both are gone"
}

# Made once only: where a disk belongs that is not plugged in, they would be made on the disk of the store.
need_places() {
    local place
    for place in "$1/base" "$1/log"; do
        [ -d "$place" ] || die "there is no $place any more. Is the disk plugged in? For another place: backup --to FOLDER"
        as_owner test -w "$place" || die "the server cannot write into $place"
    done
}

on_the_same_disk() { [ "$(stat -c %d "$1")" = "$(stat -c %d "$data")" ]; }

# The log first: with a copy alone, only the copy's moment could be restored.
keep_log() {
    local last second
    sleep 0.3 # for settings that were just written
    keep_histories
    # Something must have been written for a switch to finish a piece.
    last=$(sql_in_postgres -c "select pg_logical_emit_message(false, 'harrowby-server', 'backup')" \
        -c 'select pg_walfile_name(pg_switch_wal())' | tail -n 1)
    for ((second = 0; second < 120; ++second)); do
        [ ! -f "${machine[backup]}/log/$last" ] || return 0
        sleep 0.5
    done
    die "the server does not get its log into ${machine[backup]}/log; its own log says why: $server_log"
}

# Which timelines there were, also before this machine was the server.
keep_histories() {
    local name
    find "$data/pg_wal" -maxdepth 1 -name '????????.history' -size +0 -printf '%f\n' | while read -r name; do
        as_owner "$here/archive-log" "$data/pg_wal/$name" "$name" "${machine[backup]}/log" ||
            warn "${machine[backup]}/log holds the log of another server's past ($name)"
    done
}

copy_cluster() {
    local making=$1/base/.making
    rm -rf "$making" # what an earlier try has left
    as_owner_folder "$making"
    say "Copying ..."
    as_owner "$programs/pg_basebackup" -h "$sockets" -p "${machine[port]}" -U "$owner" -D "$making" -X stream -c fast \
        --manifest-checksums=SHA256 ${unsynced:+"$unsynced"} || die "the copy failed; earlier ones are as they were"
    as_owner "$programs/pg_verifybackup" -q "$making" ||
        die "the copy in $making is not what was read: the disk of the store or of the backup is at fault"
    made=$(date -u +%Y%m%dT%H%M%SZ)
    mv -T "$making" "$1/base/$made"
    [ -n "$unsynced" ] || sync -f "$1" # the whole file system that it is on
    say "Backed up and checked: $1/base/$made"
}

# With the shop's keys a new machine can take this one's place without a visit at each till.
keep_keys() {
    (umask 077 && tar -C "$etc" -cf "$1/keys.tar.new" ca.crt ca.key)
    mv "$1/keys.tar.new" "$1/keys.tar"
}

backups_in() { find "$1/base" -mindepth 1 -maxdepth 1 -type d -name '[0-9]*T[0-9]*Z' -printf '%f\n' | sort; }

# Those that are older by their names: after a clock that was wrong the new one stays. The log is kept from the start of the
# oldest on.
drop_old() {
    local all one start
    mapfile -t all < <(backups_in "$1")
    while ((${#all[@]} > machine[keep])) && [[ ${all[0]} < $2 ]]; do
        rm -rf "${1:?}/base/${all[0]:?}"
        all=("${all[@]:1}")
    done
    start=$(for one in "${all[@]}"; do
        sed -nE 's/^START WAL LOCATION: .* \(file ([0-9A-F]{24})\)$/\1/p' "$1/base/$one/backup_label"
    done | sort -k 1.9 | sed -n 1p)
    [ -z "$start" ] || as_owner "$programs/pg_archivecleanup" "$1/log" "$start"
}

check_log() {
    local after
    after=$(gap_in "$1")
    [ -z "$after" ] ||
        die "the log in $1/log has a gap before $after: no moment between the backups before and after it can be restored"
}

# The piece before which one is missing. They are numbered through, whatever the timeline (the first 8 digits of 24).
gap_in() {
    local name number last=
    while read -r name; do
        number=$((16#${name:8:8} * 256 + 16#${name:16:8}))
        [ -z "$last" ] || ((number <= last + 1)) || {
            printf '%s' "$name"
            return 0
        }
        last=$number
    done < <(find "$1/log" -type f -printf '%f\n' | grep -xE '[0-9A-F]{24}' | sort -k 1.9)
}

set_timer() {
    local units=$root/etc/systemd/system
    [[ $1 =~ ^([01][0-9]|2[0-3]):[0-5][0-9]$ ]] || misused "--timer takes a time of the day, like 02:30"
    install -d -m 755 "$units"
    put "$units/harrowby-server-backup.service" 644 "$(id -un)" <<UNIT
[Unit]
Description=Backup of the shop's server

[Service]
Type=oneshot
ExecStart=$program backup
# On a standby there is nothing to do.
SuccessExitStatus=3
UNIT
    put "$units/harrowby-server-backup.timer" 644 "$(id -un)" <<UNIT
[Unit]
Description=Backup of the shop's server, every day

[Timer]
OnCalendar=$1
Persistent=true

[Install]
WantedBy=timers.target
UNIT
    if [ -z "$root" ] && [ -d /run/systemd/system ]; then
        systemctl daemon-reload
        systemctl enable -q --now harrowby-server-backup.timer
    elif [ -z "$root" ]; then
        warn "systemd does not run here, so its timer does nothing; have cron call: $program backup"
    fi
    say "Every day at $1, into ${machine[backup]}, the last ${machine[keep]} are kept."
}
