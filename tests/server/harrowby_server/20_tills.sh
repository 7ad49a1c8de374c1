# shellcheck shell=bash
# add-till, add-office and what they may do.

works "add-till" on one add-till counter-1 --to "$work/till-1"
works "the till's own part" settle_in counter-1 "$work/till-1"
is "a till gets in, encrypted" t till counter-1 "select ssl from pg_stat_ssl where pid = pg_backend_pid()"
is "the files are the user's alone" "600 600 700 " stat --printf '%a ' "$work/till-1/password" "$work/till-1/service" "$work/till-1/install"
works "add-office" on one add-office desk --to "$work/office-1"
says "the office's own part" "harrowby --office --database service=harrowby-office" settle_in desk "$work/office-1"

works "beside a till of the same user" settle_in counter-1 "$work/office-1"
is "the till is the till" till_counter-1 till counter-1 "select current_user"
is "and the office the office" office_desk office counter-1 "select current_user"
is "and with its own connection" "MILK|10" shop counter-1 "Update StockList Set StockCost = 1" "select StockName, StockAvailable from StockList"
# What needs the store for itself finds it by this name (app_server_errands_test).
is "the server knows it as the program" harrowby shop counter-1 "select application_name from pg_stat_activity where pid = pg_backend_pid()"
is "and nothing else is said of it" 0 grep -c application_name "$work/till-1/service"
(umask 077 && echo '*:*:*:*:wrong' >"$work/wrong")
works "an authority that is not the shop's" openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes \
    -subj /CN=other -days 2 -keyout "$work/other.key" -out "$work/other.crt"
options=sslmode=disable refuses "without TLS it is told" "no encryption" shop counter-1 "select 1"
options="passfile=$work/wrong" refuses "with a wrong password, too" "password authentication failed" shop counter-1 "select 1"
options="user=till_nobody passfile=$work/wrong" refuses "under a wrong name" "password authentication failed" shop counter-1 "select 1"
options="sslrootcert=$work/other.crt" refuses "it trusts no other server" "certificate verify failed" shop counter-1 "select 1"
options="host=wrong.example hostaddr=127.0.0.1" refuses "nor another machine" "does not match host name" shop counter-1 "select 1"

# What the statements of a till do.
for statement in \
    "Select * from Users where Type <> 'VIEWER' and UPPER(Username) = 'A' and UPPER(Password) = 'B'" \
    "Update StockList Set StockAvailable = StockAvailable + 1 where StockID = 'MIL00001'" \
    "Select * from StockList where StockID = 'MIL00001' for update" \
    "Select count(*) as counts from StockList where StockID like 'mil%'" \
    "Select Total(StockAvailable) as Totals from Stocklist where StockUse = 'Enabled'" \
    "Insert Into InventoryCategory (CategoryName, EntryDate) Values ('DAIRY', 'today')" \
    "Delete from InventoryCategory where CategoryName = 'DAIRY'" \
    "INSERT INTO SysUsage (SystemUsage,Times,Dates) Values ('a','b','c')" \
    "insert into PurchaseCart (PurchaseID) values ('p')" \
    "Delete from PurchaseCart where PurchaseID = 'p'" \
    "insert into StoreSettings (Email) values (0)" \
    "Update StoreSettings SET Email = 0" \
    "insert into HarrowbyActivity (DeedID, DoneAt, Kind, Who, Place, What) values ('1', '', '', '', '', '')" \
    "select Value from HarrowbySetting where Name = 'PaymentWays'" \
    "update HarrowbyCode set StockID = 'b' where StockID = 'a'" \
    "select harrowby.act(gen_random_uuid(), 1)" \
    "select pg_advisory_xact_lock(1)" \
    "select harrowby.protection()"; do
    works "a till: $statement" till counter-1 "$statement"
done
# And nothing else.
is "the rights of a till" "harrowbyactivity: INSERT
harrowbycode: SELECT UPDATE
harrowbydraweropening: INSERT
harrowbyheld: DELETE INSERT SELECT
harrowbyheldline: DELETE INSERT SELECT
harrowbypayment: DELETE INSERT SELECT UPDATE
harrowbyrun: INSERT SELECT UPDATE
harrowbysetting: SELECT
inventorycategory: DELETE INSERT SELECT UPDATE
purchasecart: DELETE INSERT SELECT
stocklist: DELETE INSERT SELECT UPDATE
storesettings: INSERT SELECT UPDATE
sysusage: INSERT
users: SELECT" admin one "select table_name || ': ' || string_agg(privilege_type, ' ' order by privilege_type)
    from information_schema.role_table_grants where grantee = 'harrowby_till' group by table_name order by table_name"
for statement in \
    "delete from SysUsage" "select * from SysUsage" "update SysUsage set Times = ''" "truncate StockList" \
    "insert into Users (Username) values ('ME')" "update Users set Type = 'ADMIN'" "delete from Users" \
    "create table harrowby.mine (a int)" "create table public.mine (a int)" "create temporary table mine (a int)" \
    "create schema mine" "create function harrowby.f() returns int language sql return 1" \
    "alter table StockList add column a int" "drop table StockList" "create index on StockList (StockCost)" \
    "do 'begin null; end'" "select pg_read_file('/etc/passwd')" "select pg_ls_dir('/')" \
    "copy StockList to '/tmp/out'" "copy StockList from '/etc/passwd'" "copy StockList to program 'true'" \
    "select lo_create(0)" "select lo_import('/etc/passwd')" "alter system set fsync = off" \
    "create role mine" "set role harrowby_owner" "set session_replication_role = replica" \
    "alter role till_counter-1 superuser" "select * from pg_authid" "select * from harrowby_server.host" \
    "update harrowby.writer_action set last = 0" "select harrowby_server.know_host('a', 'b', 1)"; do
    refuses "a till: $statement" ERROR till counter-1 "$statement"
done
works "an office: users" office desk "insert into Users (Username) values ('NEW')"
works "an office: an import" office desk "delete from HarrowbyImport"
refuses "an office: what is only added to" "permission denied" office desk "delete from HarrowbyActivity"
works "an office: the log" office desk "select * from SysUsage"
refuses "an office: deleting of the log" "permission denied" office desk "delete from SysUsage"
refuses "an office: the tables" "must be owner" office desk "drop table StockList"

# Who does not get in.
plain() { HOME=$work/home-counter-1 PGSERVICE=harrowby timeout 20 "$programs/psql" -XqAt -c 'select 1' "$1"; }
refuses "without TLS" "no encryption" plain sslmode=disable
refuses "the server's own user, from the network" "pg_hba.conf rejects" plain user="$server_user"
admin one "create role stranger login password 'stranger'"
refuses "whoever was not let in" "permission denied for database" env PGPASSWORD=stranger PGSERVICE=harrowby HOME="$work/home-counter-1" \
    "$programs/psql" -XqAt -c 'select 1' "user=stranger passfile=/dev/null"
refuses "another database" "no pg_hba.conf entry" plain dbname=postgres
refuses "a server that is not the shop's" "certificate verify failed" plain "sslrootcert=$work/other.crt"
refuses "a server of another name" "does not match host name" plain "host=wrong.example hostaddr=127.0.0.1"
refuses "a wrong name" "password authentication failed" plain "user=till_nobody passfile=$work/wrong"
refuses "a wrong password" "password authentication failed" plain "passfile=$work/wrong"

refuses "a statement that fails" "does not exist" till counter-1 "select 'typed by a cashier' from nowhere"
is "the server's log keeps none" "1 0" eval 'log=$(echo "$work"/one/var/log/postgresql/*.log)
    echo "$(grep -c "nowhere.* does not exist" "$log")" "$(grep -c "typed by a cashier" "$log")"'

# Carried on a stick that knows no owners, by whoever called sudo, and nobody's taken for another's.
mkdir "$work/stick-tools"
printf '#!/bin/sh\nexit 1\n' >"$work/stick-tools/chown"
chmod +x "$work/stick-tools/chown"
works "add-till onto a stick" eval 'PATH=$work/stick-tools:$PATH on one add-till counter-1 --to "$work/till-stick"'
works "all of it" test -f "$work/till-stick/install"
if [ "$(id -u)" -eq 0 ]; then
    works "add-till with sudo" eval 'SUDO_UID=65534 SUDO_GID=65534 on one add-till counter-1 --to "$work/till-sudo" --new-password'
    is "it is the caller's" "65534 65534 65534 65534 65534 " eval 'stat --printf "%u " "$work/till-sudo" "$work/till-sudo"/*'
    works "who settles in with it" settle_in counter-1 "$work/till-sudo"
fi
refuses "an office in a till's folder" "is what till_counter-1 needs" on one add-office desk --to "$work/till-stick"
works "add-till again" on one add-till counter-1 --to "$work/till-1b"
is "the password stays" 1 till counter-1 "select 1"
works "add-till with a new password" on one add-till counter-1 --to "$work/till-1c" --new-password
refuses "the old password is over" "password authentication failed" till counter-1 "select 1"
works "the till's own part again" settle_in counter-1 "$work/till-1c"
is "the new one holds" 1 till counter-1 "select 1"
is "one service, not two" 1 grep -c '^\[harrowby\]' "$work/home-counter-1/.pg_service.conf"

refuses "more tills than there is room for" "has room for" on one add-till counter-2 --to "$work/till-2"
says "room, from the next start on" "next start" on one update --tills 3
works "the server anew" env PG_CLUSTER_CONF_ROOT="$work/one/etc/postgresql" pg_ctlcluster --skip-systemctl-redirect "$version" harrowby restart
works "room for one more" on one add-till counter-2 --to "$work/till-2"
works "remove-till" on one remove-till counter-2
works "its part" settle_in counter-2 "$work/till-2"
refuses "which is out" "password authentication failed" till counter-2 "select 1"
refuses "odd names" "is no name" on one add-till 'x"; drop role'
