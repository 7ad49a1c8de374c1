# shellcheck shell=bash
# The cluster: making, settings, starting and stopping.

is_ours() { [ -f "$etc/machine" ] && [ -d "$conf" ]; }

need_ours() { is_ours || die "this machine has no server yet: harrowby-server create, or harrowby-server standby FILE"; }

is_running() { "$programs/pg_isready" -q -h "$sockets" -p "${machine[port]}" -t 3; }

is_standby() { [ -f "$data/standby.signal" ]; }

need_running() {
    need_ours
    is_running || die "the server does not run; its log: $server_log"
}

need_primary() {
    need_running
    ! is_standby || die "this machine is the standby. Do this on the one that the tills sell with"
}

# Without its standby the server takes whatever is written, and confirms none of it.
need_writable() {
    is_running && ! is_standby || return 0
    [ "$(sql_in_postgres -c "select current_setting('synchronous_standby_names') <> '' and
        not exists (select from pg_stat_replication where sync_state in ('sync', 'quorum'))")" = f ] ||
        die "nothing can be written, as the standby is gone. Repair it, or: harrowby-server alone"
}

control() {
    local skip=()
    [ -z "$root" ] || skip=(--skip-systemctl-redirect)
    pg_ctlcluster "${skip[@]}" "$version" "$cluster" "$@" 9>&- 8>&- # the server does not hold our locks
}

# With a line a minute, as making up for a crash can take its time.
wait_running() {
    local second
    for ((second = 1; second <= 600; ++second)); do
        is_running && return 0
        ((second % 60)) || say "The server is not ready yet ..."
        sleep 1
    done
    return 1
}

start_server() {
    is_running && return 0
    control start || true # also says no when it only takes long
    wait_running || die "the server does not start; its log: $server_log"
}

stop_server() {
    [ -f "$data/postmaster.pid" ] || return 0
    control stop -m fast || ! is_running || die "the server cannot be stopped"
}

# What has changed in the settings: as much as goes without a restart, which is the shop's to choose.
use_settings() {
    control reload
    sleep 0.3
    local waiting
    waiting=$(sql_in_postgres -c "select string_agg(name, ', ') from pg_settings where pending_restart")
    [ -z "$waiting" ] || {
        warn "this counts from the next start of the server: $waiting."
        if is_automatic; then
            say "When no till sells, the standby first: patronictl -c $etc/patroni.yml restart harrowby ${auto[name]}"
        else
            say "When no till sells: pg_ctlcluster $version $cluster restart"
        fi
    }
}

# Connections that so many tills and offices can have at once: up to six each, and some for whoever keeps the server.
room_for() { printf '%s' $((30 + 6 * $1)); }

# Interrupted before anything was in it: it is made anew. The mark alone may be older than what is there now; a database
# of a shop's has a number above those that every cluster begins with.
is_half_made() { [ -f "$etc/making" ] && ! compgen -G "$data/base/[1-9]????*" >/dev/null; }

make_cluster() {
    if is_half_made; then
        [ ! -d "$conf" ] || stop_server
        rm -rf "${conf:?}" "${data:?}"
    elif is_ours && [ -d "$data" ]; then
        return 0
    elif [ -d "$conf" ] || [ -d "$data" ]; then
        die "there is a cluster '$cluster' that was not made here ($conf, $data); it is not touched"
    fi
    : >"$etc/making"
    say "Making the server's cluster ..."
    local port=()
    [ -z "${machine[port]:-}" ] || port=(-p "${machine[port]}")
    install -d -m 755 "$root/etc/postgresql" "$root/var/lib/postgresql/$version" "$root/var/log/postgresql"
    if [ -n "$root" ]; then
        install -d -m 755 "$sockets"
        [ "$(id -u)" -ne 0 ] || chown "$owner:" "$sockets"
    fi
    pg_createcluster -u "$owner" -d "$data" -l "$server_log" -s "$sockets" --locale C -e UTF8 "${port[@]}" \
        "$version" "$cluster" -- --data-checksums --auth=peer ${unsynced:+"$unsynced"} >/dev/null
    machine[port]=$(pg_conftool -s "$version" "$cluster" show port)
    save_machine
}

# The server starts whether the machine has its address yet or not: it may come late from the router after a power cut, and
# Debian's service does not try again.
need_no_address() {
    local settings=$root/etc/sysctl.d/60-harrowby-server.conf
    install -d -m 755 "${settings%/*}"
    put "$settings" 644 "$(id -un)" <<KERNEL
# Written by harrowby-server: a server may listen at an address that this machine does not have yet.
net.ipv4.ip_nonlocal_bind = 1
-net.ipv6.ip_nonlocal_bind = 1
KERNEL
    [ -n "$root" ] || ! command -v sysctl >/dev/null || sysctl -q -p "$settings" >/dev/null 2>&1 || true # at the next start, then
}

write_settings() {
    local archive=/bin/true
    need_no_address
    # %p and %f are the server's. Without a place for them yet, the log's files are not kept.
    [ -z "${machine[backup]:-}" ] || archive="\"$here/archive-log\" \"%p\" \"%f\" \"${machine[backup]}/log\""
    put "$conf/conf.d/harrowby.conf" 644 "$owner" <<SETTINGS
# Written by harrowby-server; what differs belongs into a file that comes after this one.
listen_addresses = '${machine[address]}'
max_connections = $(room_for "${machine[tills]}")
ssl = on
ssl_cert_file = '$conf/server.crt'
ssl_key_file = '$conf/server.key'
ssl_ca_file = ''
ssl_crl_file = ''
ssl_min_protocol_version = 'TLSv1.2'
password_encryption = 'scram-sha-256'
log_statement = 'none'
log_min_error_statement = 'panic' # a statement may hold the password that a cashier has typed
fsync = $([ -n "$unsynced" ] && echo off || echo on)
full_page_writes = on
synchronous_commit = on
wal_level = replica
hot_standby = on
max_wal_senders = 10
max_replication_slots = 10
wal_retrieve_retry_interval = '250ms'
max_slot_wal_keep_size = '20GB'
wal_keep_size = '$(if is_voter; then echo 10GB; else echo 0; fi)'
wal_sender_timeout = '10s'
wal_receiver_timeout = '10s'
archive_mode = on
archive_command = '$archive'
archive_timeout = '60s'
SETTINGS
    put "$conf/pg_hba.conf" 640 "$owner" <<ACCESS
# Written by harrowby-server: who gets in, and how. Whoever is in no line does not; the database lets its own groups in.
local   all          $owner  peer
local   replication  $owner  peer
hostssl all          $owner  all  reject
hostssl $database     all  ${machine[network]}  scram-sha-256
hostssl replication  +harrowby_standby  ${machine[network]}  scram-sha-256
$(! is_voter || cat <<KEEPER
local   replication  harrowby_keeper  scram-sha-256
hostssl replication,postgres  harrowby_keeper  ${machine[network]}  scram-sha-256
KEEPER
)
ACCESS
}
