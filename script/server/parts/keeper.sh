# shellcheck shell=bash
# Patroni, which keeps the server: it makes the standby the server when that dies, and the old one its standby.

is_automatic() { [ -f "$etc/patroni.yml" ]; }

# It asks without end where the voters do not answer, and has much to say about one that is gone.
keeper() {
    local said
    said=$(timeout 60 patronictl -c "$etc/patroni.yml" "$@" 2>&1) || {
        printf '%s\n' "$said" >&2
        return 1
    }
}

# What all machines have to agree on. The times: a dead machine is noticed after 20 seconds at most. Strict: a write that no
# second machine has is not confirmed, also when no standby is left.
agreed_settings() {
    printf '{"ttl":20,"loop_wait":5,"retry_timeout":7,"primary_start_timeout":30,"synchronous_mode":true,'
    printf '"synchronous_mode_strict":true,"maximum_lag_on_failover":1048576,"postgresql":{"use_pg_rewind":true,'
    printf '"use_slots":true,"parameters":{"max_connections":%s,"max_wal_senders":10,"max_replication_slots":10,' \
        "$(sql_in_postgres -c 'show max_connections')"
    printf '"max_worker_processes":8,"wal_level":"replica","hot_standby":"on","wal_log_hints":"off"}}}'
}

# change_agreed SETTING=VALUE…
change_agreed() {
    local setting settings=()
    for setting in "$@"; do
        settings+=(-s "$setting")
    done
    keeper edit-config harrowby "${settings[@]}" --force -q || die "the voters do not answer"
}
is_paused() { kept config | grep -q '"pause": *true'; }
# After one that has left or was to leave. Until then a new machine gets no copy either.
decide_again() { ! is_paused || keeper resume harrowby || die "the machines cannot be told to take over again"; }

# The login with which the machines copy from each other, and wind an old server's store back to where the others are.
make_keeper_login() {
    local password
    if [ ! -f "$etc/keeper" ]; then
        password=$(random_word)
        printf '%s' "$password" | put "$etc/keeper" 600 "$(id -un)"
    fi
    [ -n "$(sql_in_postgres -c "select 1 from pg_roles where rolname = 'harrowby_keeper'")" ] ||
        sql_in_postgres -c 'create role harrowby_keeper replication'
    sql_in_postgres -c 'alter role harrowby_keeper login' # it may have been automatic before
    set_password harrowby_keeper "$(cat "$etc/keeper")"
    sql_in_postgres -f - <<'SQL'
grant execute on function pg_ls_dir(text, boolean, boolean), pg_stat_file(text, boolean), pg_read_binary_file(text),
    pg_read_binary_file(text, bigint, bigint, boolean) to harrowby_keeper;
SQL
}

write_keeper_settings() {
    local api login
    api=$(url "${auto[name]}" 2)
    api=${api#https://}
    login="{username: harrowby_keeper, password: '$(cat "$etc/keeper")', sslmode: verify-full, sslrootcert: '$etc/ca.crt'}"
    put "$etc/patroni.yml" 600 "$owner" <<CONFIG
# Written by harrowby-server.
scope: harrowby
name: ${auto[name]}
restapi:
  listen: '$api'
  connect_address: '$api'
  certfile: $etc/voter.crt
  keyfile: $etc/patroni.key
  cafile: $etc/ca.crt
  verify_client: required
ctl: {cacert: $etc/ca.crt, certfile: $etc/voter.crt, keyfile: $etc/patroni.key}
etcd3:
  hosts: '$(all_urls | sed 's|https://||g')'
  protocol: https
  cacert: $etc/ca.crt
  cert: $etc/voter.crt
  key: $etc/patroni.key
postgresql:
  listen: '$(bracketed "${machine[address]}"):${machine[port]}'
  connect_address: '$(bracketed "${machine[address]}"):${machine[port]}'
  data_dir: $data
  config_dir: $conf
  bin_dir: $programs
  pgpass: $conf/keeper.pgpass
  use_unix_socket: true
  use_unix_socket_repl: true
  authentication:
    superuser: {username: $owner}
    replication: $login
    rewind: $login
  parameters: {unix_socket_directories: $sockets}
  basebackup: [checkpoint: fast$([ -z "$unsynced" ] || printf ', no-sync')]
# An old server that hangs confirms nothing, as its standby is gone, and no till goes back to it.
watchdog: {mode: 'off'}
tags: {nofailover: false, noloadbalance: false, clonefrom: false, nosync: false}
CONFIG
}

bracketed() { if [[ $1 == *:* ]]; then printf '[%s]' "$1"; else printf '%s' "$1"; fi; }

# From now on it is Patroni that starts the server.
start_keeper() {
    rm -f "$etc/leaving" # it was thought better of
    write_keeper_settings
    [ ! -f "$conf/start.conf" ] || put "$conf/start.conf" 644 "$owner" <<<manual
    keep_running harrowby-patroni "$owner" "Keeper of the shop's server" "$(command -v patroni)" "$etc/patroni.yml"
}

# Patroni 3.0 forgets that it waits for a standby only when it begins anew. The server goes on meanwhile.
restart_keeper() {
    if [ -z "$root" ]; then
        systemctl kill -s KILL --kill-who=main harrowby-patroni # and systemd starts it again
    else
        kill -KILL "$(pid_of harrowby-patroni)"
        while runs harrowby-patroni; do sleep 0.1; done
        start_keeper
    fi
}

is_waiting() { [ "$(sql -c 'select harrowby.protection()')" = waiting ]; }
# It may have written its settings before it knew of the server.
has_left_off() {
    control reload
    ! is_waiting
}

is_leader() { [ "$(leader)" = "${auto[name]}" ]; }
has_leader() { [ -n "$(leader)" ]; }
is_relied_on() { kept sync | grep -q '"sync_standby": *"[^"]'; }
follows() { is_running && is_standby && [ -n "$(sql_in_postgres -c "select 1 from pg_stat_wal_receiver where status = 'streaming'")" ]; }

# Each machine by itself, the standbys first. The server goes on as it was made: by hand.
leave_automatic() {
    local had_store=
    is_voter || die "this machine is not automatic"
    if is_automatic; then
        had_store=yes
        # As the voters go one by one, the server would step back. Where they do not agree any more, none takes over.
        ! voters_agree || is_paused || keeper pause harrowby --wait || die "the machines cannot be told to stay as they are"
        leave_store
    fi
    no_longer harrowby-voter
    rm -f "$etc/automatic" "$etc/voter.yml" "$etc/voter.crt" "$etc/voter.key" "$etc/patroni.key" "$etc/keeper" "$etc/go-on-alone"
    [ ! -d "$voter_data" ] || mv "$voter_data" "$voter_data.kept-$(date -u +%Y%m%dT%H%M%S)"
    say "This machine is not automatic any more. Leave on the others, too."
    if [ -n "$had_store" ]; then
        say "Until then those that still are stay as they are: none takes over, and a server that stops is not started again. Or, on one of them"
        say "that has the store: harrowby-server automatic"
    else
        say "Until then they have one vote fewer: when another one goes, nothing is sold."
    fi
}

# A second try finds it stopped: that it was the server, and who followed it, is written down first.
leave_store() {
    local names=''
    [ -f "$etc/leaving" ] || is_standby || ! is_running || { has_leader && ! is_leader; } || {
        names=$(sql -c "select string_agg(format('\"%s\"', application_name), ',' order by application_name)
        from pg_stat_replication where state = 'streaming' and application_name in (select name from harrowby_server.host)")
        put "$etc/leaving" 644 "$(id -un)" <<<"$names"
    }
    no_longer harrowby-patroni
    stop_server
    [ ! -f "$conf/postgresql.base.conf" ] || mv "$conf/postgresql.base.conf" "$conf/postgresql.conf"
    put "$conf/start.conf" 644 "$owner" <<<auto
    rm -f "$conf/keeper.pgpass" "$conf/conf.d/handing-over.conf"
    # It was stopped when it came to this: another one may have been the server since, so a person has to promote it.
    is_standby || [ -f "$etc/leaving" ] || ! has_data || as_owner touch "$data/standby.signal"
    write_settings
    if is_standby; then
        (start_server) || warn "it is no standby as long as it does not start"
        rm -f "$etc/relied-on" # what the server does from now on, it lacks
        say "It is a standby still, but follows nobody: on the server harrowby-server standby --for ${machine[name]} …, here standby FILE"
        say "Where no other one is left that has sold since: harrowby-server promote --without-what-it-lacks"
    elif has_data; then
        start_server
        sql_in_postgres -c "select pg_drop_replication_slot(slot_name) from pg_replication_slots
            where not active and slot_name not like 'standby\_%'" >/dev/null # they would keep the log for nobody
        names=$(cat "$etc/leaving")
        if [ -n "$names" ]; then
            sql_in_postgres -c "alter system set synchronous_standby_names = 'FIRST 1 ($names)'" -c 'select pg_reload_conf()' >/dev/null
        else
            remark_alone
            sql_in_postgres -c 'alter role harrowby_keeper nologin' # its word was on each of the machines
        fi
    fi
    rm -f "$etc/patroni.yml" "$etc/leaving" # last: until then it is gone on with
}
