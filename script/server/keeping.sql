-- What harrowby-server itself keeps beside the store: which machines there are, and what is to be remembered of them. A
-- standby has it too. Run as superuser; can be run again.

create schema if not exists harrowby_server;
revoke all on schema harrowby_server from public;
grant usage on schema harrowby_server to harrowby_standby;

create table if not exists harrowby_server.host (
    name text primary key,
    address text not null,
    port integer not null,
    known_since timestamptz not null default now()
);

create table if not exists harrowby_server.remark (
    name text primary key,
    value text not null,
    since timestamptz not null default now()
);

grant select on harrowby_server.host, harrowby_server.remark to harrowby_standby;
grant delete on harrowby_server.remark to harrowby_standby;

create or replace function harrowby_server.know_host(host_name text, host_address text, host_port integer) returns void
language sql security definer set search_path = pg_catalog, pg_temp
begin atomic
    insert into harrowby_server.host (name, address, port) values (host_name, host_address, host_port)
        on conflict (name) do update set address = host_address, port = host_port;
end;
revoke all on function harrowby_server.know_host(text, text, integer) from public;
grant execute on function harrowby_server.know_host(text, text, integer) to harrowby_standby;

-- How safe a write is, for a till's sign. 'single': there is no standby. 'protected': each write is on two machines.
-- 'waiting': none can be, so none is confirmed. 'alone': it goes on without the standby, by the shop's own choice.
create or replace function harrowby.protection() returns text
language sql stable security definer set search_path = pg_catalog, pg_temp
begin atomic
    select case
        when (select count(*) from harrowby_server.host) < 2 then 'single'
        when current_setting('synchronous_standby_names') = '' then 'alone'
        when exists (select 1 from pg_stat_replication where sync_state in ('sync', 'quorum')) then 'protected'
        else 'waiting'
    end;
end;

grant execute on function pg_reload_conf() to harrowby_standby;
