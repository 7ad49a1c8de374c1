# shellcheck shell=bash
# The shop's own authority, which tills know the server by, and the server's certificate. Keys are readable by root alone,
# the server's by the server.

authority_years=20
certificate_years=10

make_authority() {
    [ ! -f "$etc/ca.key" ] || return 0
    (
        umask 077
        openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes -sha256 \
            -days $((365 * authority_years)) -subj "/CN=Harrowby server of this shop" \
            -addext 'basicConstraints=critical,CA:TRUE' -addext 'keyUsage=critical,keyCertSign,cRLSign' \
            -keyout "$etc/ca.key.new" -out "$etc/ca.crt.new" 2>/dev/null
    ) || die "openssl cannot make the authority's key"
    chmod 644 "$etc/ca.crt.new"
    mv "$etc/ca.crt.new" "$etc/ca.crt"
    mv "$etc/ca.key.new" "$etc/ca.key" # last: with it, both are there
}

# From another machine of the shop, or from a backup: a file with ca.crt and ca.key.
take_authority() {
    local folder
    folder=$(mktemp -d)
    tar -C "$folder" -xf "$1" --no-same-owner ca.crt ca.key || die "$1 holds no keys"
    if [ ! -f "$etc/ca.key" ]; then
        install -m 644 "$folder/ca.crt" "$etc/ca.crt"
        install -m 600 "$folder/ca.key" "$etc/ca.key"
    elif ! cmp -s "$folder/ca.crt" "$etc/ca.crt"; then
        rm -rf "$folder"
        die "this server has keys of its own, and the tills that know others do not trust it. If none was let in with its own
    keys yet: rm $etc/ca.key, then this once more"
    fi
    rm -rf "$folder"
}

certificate_fits() {
    local kind=-checkhost
    [ -f "$conf/server.crt" ] || return 1
    is_number_address "${machine[address]}" && kind=-checkip
    openssl x509 -in "$conf/server.crt" -noout -checkend $((365 * 86400)) >/dev/null &&
        openssl x509 -in "$conf/server.crt" -noout $kind "${machine[address]}" | grep -q 'does match' &&
        openssl verify -CAfile "$etc/ca.crt" "$conf/server.crt" >/dev/null 2>&1
}

# Made anew when it has less than a year left, or the machine's address has changed.
make_certificate() {
    local folder names="DNS:${machine[name]}"
    ! certificate_fits || return 0
    if is_number_address "${machine[address]}"; then
        names+=",IP:${machine[address]}"
    else
        names+=",DNS:${machine[address]}"
    fi
    folder=$(mktemp -d)
    chmod 700 "$folder"
    printf 'subjectAltName=%s\nextendedKeyUsage=serverAuth\nbasicConstraints=CA:FALSE\n' "$names" >"$folder/extensions"
    {
        openssl req -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes -sha256 -subj "/CN=${machine[name]}" \
            -keyout "$folder/key" -out "$folder/request" 2>/dev/null
        openssl x509 -req -sha256 -in "$folder/request" -CA "$etc/ca.crt" -CAkey "$etc/ca.key" \
            -set_serial "0x$(openssl rand -hex 8)" -days $((365 * certificate_years)) \
            -extfile "$folder/extensions" -out "$folder/crt" 2>/dev/null
    }
    [ -s "$folder/crt" ] || die "openssl cannot make the server's certificate"
    put "$conf/server.key" 600 "$owner" <"$folder/key"
    put "$conf/server.crt" 644 "$owner" <"$folder/crt"
    rm -rf "$folder"
}
