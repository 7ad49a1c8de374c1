# shellcheck shell=bash
# What all commands use: words, options, files, what is remembered of this machine, and its SQL.

root=${HARROWBY_SERVER_ROOT:-}
root=${root%/}
unsynced= # an option of the server's programs, for the tests
etc=$root/etc/harrowby-server
cluster=harrowby
database=harrowby
declare -A opt=()     # options of the command line
declare -a rest=()    # and what is none
declare -A machine=() # what is remembered of this machine: name, address, network, port, tills, version, backup, keep

say() { printf '%s\n' "$*"; }
warn() { printf 'Note: %s\n' "$*" >&2; }
die() {
    printf 'harrowby-server: %s\n' "$*" >&2
    exit 1
}
misused() {
    printf 'harrowby-server: %s\n' "$*" >&2
    exit 2
}

# After take_options, of a command that takes options alone.
takes_nothing_else() {
    ((${#rest[@]} == 0)) || misused "$1 takes no '${rest[0]}'"
}

# take_options "NAME: FLAG …" ARGUMENT…: a name with a colon takes a value.
take_options() {
    local known=" $1 " name
    shift
    while (($#)); do
        case $1 in
            --*=*) set -- "${1%%=*}" "${1#*=}" "${@:2}" ;;
            --*)
                name=${1#--}
                if [[ $known == *" $name: "* ]]; then
                    (($# > 1)) || misused "--$name needs a value"
                    opt[$name]=$2
                    shift 2
                elif [[ $known == *" $name "* ]]; then
                    opt[$name]=yes
                    shift
                else
                    misused "there is no option --$name here"
                fi
                ;;
            *)
                rest+=("$1")
                shift
                ;;
        esac
    done
}

absolute() {
    case $1 in
        /*) printf '%s' "$1" ;;
        *) printf '%s' "$began_in/$1" ;;
    esac
}

check_name() {
    [[ $1 =~ ^[a-z0-9]([a-z0-9-]{0,38}[a-z0-9])?$ ]] ||
        misused "'$1' is no name here: small letters, digits and hyphens, at most 40"
}
check_number() {
    [[ $1 =~ ^[0-9]{1,5}$ ]] || misused "'$1' is no whole number"
}
byte='(25[0-5]|2[0-4][0-9]|1?[0-9]?[0-9])'
is_number_address() { [[ $1 =~ ^($byte\.){3}$byte$ || $1 =~ ^[0-9a-fA-F]*:[0-9a-fA-F.]*:[0-9a-fA-F.:]*$ ]]; }
check_address() {
    is_number_address "$1" || [[ $1 =~ ^[A-Za-z0-9]([A-Za-z0-9.-]{0,251}[A-Za-z0-9])?$ && ! $1 =~ ^[0-9.]+$ ]] ||
        misused "'$1' is no address; one looks like 192.168.1.12"
}
check_network() {
    [[ $1 =~ ^($byte\.){3}$byte/([0-9]|[12][0-9]|3[0-2])$ || $1 =~ ^[0-9a-fA-F]*:[0-9a-fA-F.:]*/([0-9]|[1-9][0-9]|1[01][0-9]|12[0-8])$ ]] ||
        misused "'$1' is no network; one looks like 192.168.1.0/24"
}

# ---- who works

prepare() {
    local variable
    for variable in $(compgen -e PG); do
        unset "$variable" # none of the caller's own settings for other servers
    done
    if [ -n "$root" ]; then
        unsynced=${HARROWBY_SERVER_UNSYNCED:+--no-sync}
        export PG_CLUSTER_CONF_ROOT=$root/etc/postgresql
        sockets=$root/run
    else
        [ "$(id -u)" -eq 0 ] || die "only root can do this: sudo harrowby-server …"
        sockets=/var/run/postgresql
    fi
    if [ "$(id -u)" -eq 0 ]; then
        owner=postgres
    else
        owner=$(id -un)
    fi
    load_machine
    load_automatic
    find_server
}

# The server's programs: of the version that this machine's cluster has, else of the newest there is.
find_server() {
    local all=${HARROWBY_SERVER_PROGRAMS:-/usr/lib/postgresql} found
    if [ -z "${machine[version]:-}" ]; then
        found=$(compgen -G "$all/[1-9][0-9]" | sort | tail -n 1 || true) # none on a machine that is to become the server
        machine[version]=${found##*/}
    fi
    version=${machine[version]}
    programs=$all/$version/bin
    conf=$root/etc/postgresql/$version/$cluster
    data=$root/var/lib/postgresql/$version/$cluster
    server_log=$root/var/log/postgresql/postgresql-$version-$cluster.log
}

need_server() {
    if [ -z "$version" ] || [ ! -x "$programs/postgres" ] || ! command -v openssl >/dev/null; then
        [ -z "$root" ] || die "the packages postgresql and openssl are missing"
        install_postgresql
        find_server
    fi
    [ "${version:-0}" -ge 15 ] || die "PostgreSQL $version is too old: it takes 15 or newer"
}

# The package would make a cluster of its own, and give it the usual port.
install_postgresql() {
    local none=/etc/postgresql-common/createcluster.d/harrowby-server.conf
    install -d -m 755 "${none%/*}"
    echo 'create_main_cluster = false' >"$none"
    install_packages postgresql openssl
    rm -f "$none"
}

# The package lists may be missing or too old; they are fetched only when they do not serve.
install_packages() {
    say "Installing $* ..."
    fetch_packages "$@" || { apt-get -qq update </dev/null >/dev/null && fetch_packages "$@"; } ||
        die "these packages could not be installed: $*"
}
fetch_packages() {
    DEBIAN_FRONTEND=noninteractive apt-get -qq install -y --no-install-recommends "$@" </dev/null >/dev/null 2>&1
}

as_owner() {
    if [ "$(id -u)" -eq 0 ]; then
        runuser -u "$owner" -- "$@"
    else
        "$@"
    fi
}

lock_machine() {
    install -d -m 755 "$etc"
    exec 9>"$etc/lock"
    flock -n 9 || die "another harrowby-server is at work on this machine"
}

# ---- files

sync_to_disk() { [ -n "$unsynced" ] || sync "$1"; }

# put FILE MODE OWNER: what comes in becomes the file, whole or not at all.
put() {
    local new
    new=$(mktemp "$1.XXXXXX")
    cat >"$new"
    chmod "$2" "$new"
    if [ "$(id -u)" -eq 0 ] && [ "$3" != root ]; then
        chown "$3:" "$new"
    fi
    sync_to_disk "$new"
    mv -f "$new" "$1"
}

# What goes to another machine belongs to whoever called sudo, who has to carry it. A stick may know no owners.
for_carrying() {
    [ "$(id -u)" -eq 0 ] && [ -n "${SUDO_UID:-}" ] || return 0
    chown "$SUDO_UID:${SUDO_GID:-}" "$@" 2>/dev/null || true
}

load_machine() {
    local key value
    [ -f "$etc/machine" ] || return 0
    while IFS='=' read -r key value; do
        case $key in
            name | address | network | port | tills | version | backup | keep) machine[$key]=$value ;;
        esac
    done <"$etc/machine"
}

save_machine() {
    local key
    for key in name address network port tills version backup keep; do
        printf '%s=%s\n' "$key" "${machine[$key]:-}"
    done | put "$etc/machine" 644 "$(id -un)"
}

random_word() {
    local word
    word=$(openssl rand -base64 48 | tr -dc 'A-Za-z0-9')
    printf '%s' "${word:0:32}"
}

# ---- SQL

# sql [OPTION …]: psql on this machine's server as its superuser; statements from -c, -f or the input.
sql() {
    as_owner "$programs/psql" -X -q -A -t -v ON_ERROR_STOP=1 -h "$sockets" -p "${machine[port]}" -U "$owner" \
        -d "$database" "$@"
}
sql_in_postgres() { sql -d postgres "$@"; }
