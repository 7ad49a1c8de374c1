# shellcheck shell=bash
# A voter: etcd, of which more than half have to agree before a standby takes over. One on each machine that has the store,
# and on a third one, which may be a till. They know each other by certificates of the shop's authority.

voter_data=$root/var/lib/harrowby-voter
declare -A auto=() # what is remembered: name, address, port, members, stores, token, born

load_automatic() {
    local key value
    [ -f "$etc/automatic" ] || return 0
    while IFS='=' read -r key value; do
        case $key in
            name | address | port | members | stores | token | born) auto[$key]=$value ;;
        esac
    done <"$etc/automatic"
}

save_automatic() {
    local key
    for key in name address port members stores token born; do
        printf '%s=%s\n' "$key" "${auto[$key]:-}"
    done | put "$etc/automatic" 644 "$(id -un)"
}

is_voter() { [ -f "$etc/automatic" ]; }

# Whom etcd runs as. Its package has a user of that name.
voter_user() { if [ -z "$root" ]; then printf 'etcd'; else printf '%s' "$owner"; fi; }

# ---- members, each "NAME=ADDRESS,PORT": the ports are PORT for the server's use, PORT+1 for each other's, PORT+2 for what
# the machines that have the store ask each other

member_names() { tr ' ' '\n' <<<"${auto[members]}" | cut -d = -f 1; }
where_is() { tr ' ' '\n' <<<"${auto[members]}" | sed -n "s/^$1=//p"; }
# url NAME OFFSET
url() {
    local where address
    where=$(where_is "$1")
    address=${where%,*}
    [[ $address != *:* ]] || address="[$address]"
    printf 'https://%s:%s' "$address" $((${where##*,} + $2))
}
joined() { paste -sd, -; }
all_urls() { member_names | while read -r name; do
    url "$name" 0
    echo
done | joined; }
has_store() { [[ " ${auto[stores]} " == *" $1 "* ]]; }

# ---- certificates

# write_voter_certificate NAME ADDRESS FOLDER: voter.key and voter.crt, which open both ends of a connection.
write_voter_certificate() {
    local folder=$3
    printf 'subjectAltName=DNS:%s,IP:%s\nextendedKeyUsage=serverAuth,clientAuth\nbasicConstraints=CA:FALSE\n' \
        "$1" "$2" >"$folder/extensions"
    (
        umask 077
        openssl req -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes -sha256 -subj "/CN=$1" \
            -keyout "$folder/voter.key" -out "$folder/request" 2>/dev/null
        openssl x509 -req -sha256 -in "$folder/request" -CA "$etc/ca.crt" -CAkey "$etc/ca.key" \
            -set_serial "0x$(openssl rand -hex 8)" -days $((365 * certificate_years)) \
            -extfile "$folder/extensions" -out "$folder/voter.crt" 2>/dev/null
    )
    [ -s "$folder/voter.crt" ] || die "openssl cannot make the certificate of $1"
    rm -f "$folder/extensions" "$folder/request"
}

# take_voter_certificate FOLDER: for etcd, and for whoever asks it here.
take_voter_certificate() {
    put "$etc/voter.crt" 644 "$(id -un)" <"$1/voter.crt"
    put "$etc/voter.key" 600 "$(voter_user)" <"$1/voter.key"
    ! has_store "${auto[name]}" || put "$etc/patroni.key" 600 "$owner" <"$1/voter.key"
}

# ---- services

# keep_running NAME USER DESCRIPTION COMMAND…: from now on, and from each start of the machine on.
keep_running() {
    local name=$1 user=$2 description=$3
    shift 3
    if [ -n "$root" ]; then
        run_here "$name" "$user" "$@"
        return 0
    fi
    put "/etc/systemd/system/$name.service" 644 root <<UNIT
[Unit]
Description=$description
Wants=network-online.target
After=network-online.target

[Service]
User=$user
ExecStart=$*
ExecReload=/bin/kill -HUP \$MAINPID
# What Patroni has started outlives it.
KillMode=process
Restart=always
RestartSec=2
TimeoutStopSec=60
OOMScoreAdjust=-500
Environment=PG_OOM_ADJUST_FILE=/proc/self/oom_score_adj
LimitNOFILE=65536
$([ "$name" != harrowby-patroni ] || printf 'StandardOutput=append:%s\nStandardError=append:%s' "$server_log" "$server_log")

[Install]
WantedBy=multi-user.target
UNIT
    systemctl daemon-reload
    systemctl enable -q "$name"
    # Patroni would stop the server.
    if [ "$name" = harrowby-patroni ] && runs "$name"; then
        systemctl reload "$name"
    else
        systemctl restart "$name"
    fi
}

pid_of() { cat "$root/run/$1.pid" 2>/dev/null; }
runs() {
    if [ -n "$root" ]; then
        kill -0 "$(pid_of "$1")" 2>/dev/null
    else
        systemctl is-active -q "$1"
    fi
}

run_here() {
    local name=$1 user=$2 become=() log=$root/var/log/$1.log
    shift 2
    [ "$name" != harrowby-patroni ] || log=$server_log
    if runs "$name"; then
        [ "$name" != harrowby-patroni ] || kill -HUP "$(pid_of "$name")"
        return 0
    fi
    [ "$(id -u)" -ne 0 ] || become=(setpriv "--reuid=$user" "--regid=$user" --init-groups --reset-env)
    install -d -m 755 "$root/run" "$root/var/log"
    setsid "${become[@]}" "$@" >>"$log" 2>&1 </dev/null 9>&- &
    echo $! >"$root/run/$name.pid"
}

no_longer() {
    local second
    if [ -z "$root" ]; then
        [ ! -f "/etc/systemd/system/$1.service" ] || systemctl disable -q --now "$1"
        rm -f "/etc/systemd/system/$1.service"
        return 0
    fi
    for ((second = 0; second < 60; ++second)); do
        runs "$1" || break
        kill "$(pid_of "$1")" 2>/dev/null || true
        sleep 1
    done
    rm -f "$root/run/$1.pid"
}

need_programs() {
    local missing=() package
    command -v etcd >/dev/null || missing+=(etcd-server)
    command -v etcdctl >/dev/null || missing+=(etcd-client)
    [ "$1" = voter ] || {
        command -v patroni >/dev/null || missing+=(patroni)
        /usr/bin/python3 -c 'import idna' 2>/dev/null || missing+=(python3-idna)
    }
    command -v openssl >/dev/null || missing+=(openssl)
    [ -n "$root" ] || [ -d /run/systemd/system ] || die "this machine has no systemd, which keeps the voters running"
    ((${#missing[@]} > 0)) || return 0
    [ -z "$root" ] || die "packages are missing: ${missing[*]}"
    install_packages "${missing[@]}"
    for package in "${missing[@]}"; do
        # These packages start one of their own, which belongs to nobody.
        [[ $package != etcd-server && $package != patroni ]] || systemctl disable -q --now "${package%-server}" 2>/dev/null || true
    done
}

# ---- etcd

start_voter() {
    local user
    user=$(voter_user)
    install -d -m 700 "$voter_data"
    [ "$(id -u)" -ne 0 ] || chown "$user:" "$voter_data"
    put "$etc/voter.yml" 644 "$(id -un)" <<CONFIG
# Written by harrowby-server.
name: ${auto[name]}
data-dir: $voter_data
listen-peer-urls: $(url "${auto[name]}" 1)
listen-client-urls: $(url "${auto[name]}" 0)
initial-advertise-peer-urls: $(url "${auto[name]}" 1)
advertise-client-urls: $(url "${auto[name]}" 0)
initial-cluster: $(member_names | while read -r name; do
        printf '%s=%s\n' "$name" "$(url "$name" 1)"
    done | joined)
initial-cluster-state: ${auto[born]}
initial-cluster-token: ${auto[token]}
# A till's disk may take its time; Patroni waits for a choice no longer than seven seconds.
heartbeat-interval: 150
election-timeout: 1500
auto-compaction-retention: "1"
enable-grpc-gateway: true # how Patroni asks; not there by itself where settings are in a file
logger: zap
log-level: warn
client-transport-security: {client-cert-auth: true, trusted-ca-file: $etc/ca.crt, cert-file: $etc/voter.crt, key-file: $etc/voter.key}
peer-transport-security: {client-cert-auth: true, trusted-ca-file: $etc/ca.crt, cert-file: $etc/voter.crt, key-file: $etc/voter.key}
CONFIG
    keep_running harrowby-voter "$user" "Voter of the shop's servers" "$(command -v etcd)" --config-file "$etc/voter.yml"
}

# vote ARGUMENT…: etcdctl's.
vote() {
    ETCDCTL_API=3 etcdctl --endpoints "${endpoints:-$(all_urls)}" --cacert "$etc/ca.crt" --cert "$etc/voter.crt" \
        --key "$etc/voter.key" --dial-timeout 2s --command-timeout 5s "$@" 2>/dev/null
}
voters_agree() { vote get /agreed >/dev/null; }
all_voters_answer() {
    local name
    for name in $(member_names); do
        voter_answers "$name" || return 1
    done
}
voter_answers() { endpoints=$(url "$1" 0) vote endpoint status >/dev/null; }
# The voters know of an address that has changed since this machine took part.
learn_addresses() {
    local name address port
    while read -r name address port; do
        [ -z "$(where_is "$name")" ] ||
            auto[members]=$(tr ' ' '\n' <<<"${auto[members]}" | sed "s/^$name=.*/$name=$address,$((port - 1))/" | paste -sd ' ')
    done < <(vote member list | sed -nE 's|^[^,]*, started, ([a-z0-9-]+), https://\[?([^],]+)\]?:([0-9]+),.*|\1 \2 \3|p')
}
kept() { vote get --print-value-only "/service/harrowby/$1"; }
leader() { kept leader; }

# patiently WORDS COMMAND…: until it ends with 0; for as long as it takes to walk to the other machines. Others may use
# harrowby-server meanwhile.
patiently() {
    local words=$1 second
    shift
    flock -u 9
    for ((second = 0; second < ${HARROWBY_SERVER_PATIENCE:-3600}; ++second)); do
        if "$@"; then
            flock -w 60 9 || die "another harrowby-server is at work on this machine"
            return 0
        fi
        ((second != 3)) || say "$words"
        sleep 1
    done
    die "$words That did not come to be. When it has: harrowby-server automatic"
}
