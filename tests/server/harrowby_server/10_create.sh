# shellcheck shell=bash
# create and update.

! command -v shellcheck >/dev/null ||
    works "shellcheck" eval '(cd "${script%/*}" && shellcheck -x harrowby-server archive-log install-login &&
        shellcheck "$source_dir"/tests/server/harrowby_server_test.sh)'

refuses "a machine without PostgreSQL" "packages postgresql and openssl are missing" \
    env HARROWBY_SERVER_PROGRAMS="$work/none" HARROWBY_SERVER_ROOT="$work/bare" "$script" create --address 127.0.0.1 --network 127.0.0.0/8
refuses "which has no server yet" "has no server yet" env HARROWBY_SERVER_PROGRAMS="$work/none" HARROWBY_SERVER_ROOT="$work/bare" "$script" status
refuses "create without a network" "needs --network" on one create --address 127.0.0.1
for network in 192.168.1/24 192.168.1.0/240 192.168.1.300/24 192.168.1.0/33 192.168.1.0; do
    refuses "no network: $network" "is no network" on one create --address 127.0.0.1 --network "$network"
done
works "create" on one create --name one --address 127.0.0.1 --network 127.0.0.0/8 --port "$port_one" --tills 2
is "checksums" on admin one "show data_checksums"
is "C locale" "C C UTF8" admin one "select datcollate || ' ' || datctype || ' ' || pg_encoding_to_char(encoding) from pg_database where datname = 'harrowby'"
is "the shop's network only" "127.0.0.1" admin one "show listen_addresses"
is "SCRAM" scram-sha-256 admin one "show password_encryption"
is "no way in without TLS" 0 admin one "select count(*) from pg_hba_file_rules where type in ('host', 'hostnossl')"
is "the tables are the owner's" 6 admin one "select count(*) from pg_tables where schemaname = 'harrowby' and tableowner = 'harrowby_owner'
    and tablename in ('users', 'inventorycategory', 'stocklist', 'purchasecart', 'storesettings', 'sysusage')"
is "the search path" "harrowby, pg_catalog, pg_temp" admin one "show search_path"

admin one "insert into StockList (StockID, StockName, StockAvailable) values ('MIL00001', 'MILK', 10)"
works "create again" on one create
admin one "drop function harrowby.protection(); drop table HarrowbySetting; revoke insert on SysUsage from harrowby_till"
works "update" on one update
is "what was not there yet is added" "single true true" admin one "select harrowby.protection() || ' ' || (to_regclass('harrowbysetting') is not null) || ' ' ||
    has_table_privilege('harrowby_till', 'sysusage', 'insert')"
is "nothing is overwritten" 1 admin one "select count(*) from StockList"
refuses "another port afterwards" "has port" on one create --port 1234
refuses "a word that update does not take" "update takes no 'tills'" on one update tills 30
refuses "one that could be meant as an option" "alone takes no 'off'" on one alone off
refuses "another name afterwards" "has name one already" on one create --name other
is "it starts before it has its address" 2 grep -cE '^-?net.ipv[46].ip_nonlocal_bind = 1$' "$work/one/etc/sysctl.d/60-harrowby-server.conf"

mkdir -p "$work/foreign/var/lib/postgresql/$version/harrowby"
echo precious >"$(data_of foreign)/something"
refuses "a cluster of somebody else's" "not touched" on foreign create --name f --address 127.0.0.1 --network 127.0.0.0/8
is "which stays" precious cat "$(data_of foreign)/something"

# Interrupted anywhere, and done again.
port_four=$(free_port)
create_four() { on four create --name four --address 127.0.0.1 --network 127.0.0.0/8 --port "$port_four"; }
for after in 0.2 0.7 1.2 2 3; do
    HARROWBY_SERVER_ROOT=$work/four "$script" create --name four --address 127.0.0.1 --network 127.0.0.0/8 --port "$port_four" \
        >/dev/null 2>&1 &
    sleep $after
    kill -KILL $! 2>/dev/null
    wait $! 2>/dev/null
done
wait_for "create after it was killed" 1 eval 'create_four >/dev/null && echo 1'
is "whole" 6 admin four "select count(*) from pg_tables where schemaname = 'harrowby' and tableowner = 'harrowby_owner'
    and tablename in ('users', 'inventorycategory', 'stocklist', 'purchasecart', 'storesettings', 'sysusage')"
works "create with another address" on four create --address localhost
is "which is remembered" address=localhost grep '^address=' "$work/four/etc/harrowby-server/machine"
is "by all" localhost admin four "select address from harrowby_server.host"
