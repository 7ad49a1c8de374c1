#!/usr/bin/env bash
# Drives script/server/harrowby-server on "machines" that are folders of this one: a server, its standby, tills. As root
# the servers run as the user postgres, else as whoever calls.
#   harrowby_server_test.sh SOURCE_DIR SHOP_TILL
# Its parts stand on one another, in the folder harrowby_server; HARROWBY_PART='[12]*' runs the first ones alone.
# HARROWBY_PARTS=takeovers is what script/endure does with them.
# SHOP_TILL is the program of that name, a till's connection without its window.
set -uo pipefail
source_dir=$1
shop_till=$2
export HARROWBY_SERVER_SQL=${HARROWBY_SERVER_SQL:-$source_dir/src/postgres/schema}
export HARROWBY_SERVER_UNSYNCED=1
work=$(mktemp -d "${TMPDIR:-/tmp}/hs.XXXXXX") # short: a socket's path has 107 bytes
chmod 755 "$work"
# The servers run a part of it, as a user who may not get to where the source lies.
mkdir "$work/program"
cp -r "$source_dir/script/server/." "$work/program"
chmod -R a+rX "$work/program"
script=$work/program/harrowby-server
version=$(find /usr/lib/postgresql -mindepth 1 -maxdepth 1 -name '[1-9][0-9]' | sort | tail -n 1)
programs=$version/bin
version=${version##*/}
failures=0
checks=0

clean_up() {
    local running
    for running in "$work"/*/run/harrowby-patroni.pid "$work"/*/run/harrowby-voter.pid; do
        [ ! -f "$running" ] || kill -KILL "$(cat "$running")" 2>/dev/null
    done
    for running in "$work"/*/var/lib/postgresql/*/harrowby*/postmaster.pid; do
        [ ! -f "$running" ] || kill -QUIT "$(head -n 1 "$running")" 2>/dev/null
    done
    sleep 0.5
    rm -rf "$work"
}
trap clean_up EXIT

# ---- judging

passed() { checks=$((checks + 1)); }
failed() {
    checks=$((checks + 1))
    failures=$((failures + 1))
    printf 'FAIL: %s\n' "$1"
    [ ! -s "$work/out" ] || sed 's/^/    /' "$work/out"
}
# works WHAT COMMAND…: ends with 0.
works() {
    local what=$1
    shift
    if "$@" >"$work/out" 2>&1 </dev/null; then passed; else failed "$what"; fi
}
# refuses WHAT TEXT COMMAND…: ends with another, and says the text.
refuses() {
    local what=$1 text=$2
    shift 2
    if "$@" >"$work/out" 2>&1 </dev/null; then
        failed "$what: was done"
    elif grep -qF -- "$text" "$work/out"; then
        passed
    else
        failed "$what: does not say '$text'"
    fi
}
# is WHAT WANTED COMMAND…: ends with 0 and this output.
is() {
    local what=$1 wanted=$2 found
    shift 2
    found=$("$@" 2>"$work/out" </dev/null)
    if [ "$found" = "$wanted" ]; then passed; else failed "$what: '$found' instead of '$wanted'"; fi
}
says() {
    local what=$1 text=$2
    shift 2
    "$@" >"$work/out" 2>&1 </dev/null
    if grep -qF -- "$text" "$work/out"; then passed; else failed "$what: does not say '$text'"; fi
}

# ---- the machines

on() { HARROWBY_SERVER_ROOT=$work/$1 "$script" "${@:2}"; }
server_user=$(id -un)
[ "$(id -u)" -ne 0 ] || server_user=postgres
as_server() { if [ "$(id -u)" -eq 0 ]; then runuser -u postgres -- "$@"; else "$@"; fi; }
admin() {
    local machine=$1 port
    shift
    port=$(sed -n 's/^port=//p' "$work/$machine/etc/harrowby-server/machine")
    (cd / && as_server "$programs/psql" -XqAt -v ON_ERROR_STOP=1 -h "$work/$machine/run" -p "$port" -d harrowby -c "$1")
}
# till NAME SQL: as a till that was let in, through the service file of its home.
till() {
    (cd / && HOME=$work/home-$1 PGSERVICE=${service:-harrowby} PGTARGETSESSIONATTRS=read-write PGOPTIONS='-c statement_timeout=20s' \
        timeout 30 "$programs/psql" -XqAt -v ON_ERROR_STOP=1 -c "$2")
}
office() { service=harrowby-office till "$@"; }
# shop NAME ARGUMENT…: with the connection that a till has.
shop() {
    (cd / && HOME=$work/home-$1 timeout 100 "$shop_till" "service=harrowby ${options:-}" "$work/state-$1" "${@:2}")
}
settle_in() {
    mkdir -p "$work/home-$1"
    HOME=$work/home-$1 XDG_CONFIG_HOME='' sh "$2/install"
}
# Each port is given once: from a start of this run's own it is counted up, as a port that is free may be another's soon.
printf '%d' $((20000 + RANDOM % 10000)) >"$work/ports"
free_port() {
    local port
    port=$(<"$work/ports")
    while (exec 3<>"/dev/tcp/127.0.0.1/$port") 2>/dev/null; do port=$((port + 1)); done
    printf '%d' $((port + 1)) >"$work/ports"
    printf '%s' "$port"
}
# The first of three in a row.
free_ports() {
    local first second third
    while :; do
        first=$(free_port) second=$(free_port) third=$(free_port)
        [ $((third - first)) -ne 2 ] || break
    done
    printf '%s' "$first"
}
data_of() { printf '%s' "$work/$1/var/lib/postgresql/$version/harrowby"; }
stop_service() {
    local process
    process=$(cat "$work/$1/run/$2.pid" 2>/dev/null) || return 0
    kill -KILL "$process"
    while kill -0 "$process" 2>/dev/null; do sleep 0.05; done
}
kill_voter() { stop_service "$1" harrowby-voter; }
# The power fails: all its processes at once.
kill_machine() {
    stop_service "$1" harrowby-patroni # first, or it starts another server
    kill_voter "$1"
    kill_server "$1"
}
kill_server() {
    local main
    main=$(head -n 1 "$(data_of "$1")/postmaster.pid")
    kill -STOP "$main"
    pkill -KILL -P "$main"
    kill -KILL "$main"
    while kill -0 "$main" 2>/dev/null; do sleep 0.05; done
}
wait_for() {
    local what=$1 wanted=$2 second
    shift 2
    for ((second = 0; second < 100; ++second)); do
        [ "$("$@" 2>/dev/null)" != "$wanted" ] || {
            passed
            return
        }
        sleep 0.2
    done
    failed "$what: not within 20 seconds"
}
protection() { admin "$1" "select harrowby.protection()"; }
stock() { admin "$1" "select StockAvailable from StockList"; }
sell() { till "$1" "insert into PurchaseCart (PurchaseID) values ('$2')"; }
sold() { admin "$1" "select string_agg(PurchaseID, ' ' order by PurchaseID) from PurchaseCart where PurchaseID not like 'busy%'"; }

export port_one port_two server_user HARROWBY_SERVER_PATIENCE=120
port_one=$(free_port)
port_two=$(free_port)
for part in "$(dirname "${BASH_SOURCE[0]}")/${HARROWBY_PARTS:-harrowby_server}"/${HARROWBY_PART:-*}.sh; do
    # shellcheck source=/dev/null
    . "$part"
    ((failures == 0)) || break # what comes later stands on it
done
printf '%d checks, %d failed\n' "$checks" "$failures"
((checks > 0 && failures == 0))
