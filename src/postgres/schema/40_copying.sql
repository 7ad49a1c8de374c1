-- SPDX-License-Identifier: MIT
-- For a store that is copied into this one, or put into its place, as a whole: not for a till. All of it is meant to be
-- called in one transaction. Can be run again any number of times.

-- The tables of a store: the shop's six and the program's own, as they are found.
create or replace function harrowby.store_tables() returns table (name name)
    language sql stable set search_path = pg_catalog, pg_temp
    as $$
        select relname from pg_class
        where relnamespace = 'harrowby'::regnamespace and relkind in ('r', 'p') and
            (relname in ('users', 'inventorycategory', 'stocklist', 'purchasecart', 'storesettings', 'sysusage') or
             starts_with(relname, 'harrowby'))
        order by relname
    $$;

-- Nobody else writes until the transaction has ended; who reads goes on.
create or replace function harrowby.lock_store() returns void
    language plpgsql security definer set search_path = pg_catalog, pg_temp as $$
declare
    one name;
begin
    for one in select name from harrowby.store_tables() loop
        execute format('lock table harrowby.%I in exclusive mode', one);
    end loop;
end $$;

-- Takes every row away but those of tables that are only ever added to.
create or replace function harrowby.empty_store() returns void
    language plpgsql security definer set search_path = pg_catalog, pg_temp as $$
declare
    emptied text;
begin
    select string_agg(format('harrowby.%I', name), ', ') into emptied
        from harrowby.store_tables() where name not in ('harrowbyactivity', 'harrowbydraweropening');
    execute 'truncate table ' || emptied;
end $$;

-- New rows get identities above those that were written by hand. What a sequence has given stays given, as a taken-back
-- transaction does not take that back.
create or replace function harrowby.follow_identities() returns void
    language plpgsql security definer set search_path = pg_catalog, pg_temp as $$
declare
    one name;
    given bigint;
    highest bigint;
    numbers text;
begin
    for one in select name from harrowby.store_tables() loop
        continue when not exists (select from pg_attribute
            where attrelid = format('harrowby.%I', one)::regclass and attname = 'rowid_' and attidentity <> '');
        numbers := pg_get_serial_sequence(format('harrowby.%I', one), 'rowid_');
        execute format('select coalesce(max(rowid_), 0) from harrowby.%I', one) into highest;
        execute format('select last_value - case when is_called then 0 else 1 end from %s', numbers) into given;
        perform setval(numbers::regclass, greatest(highest, given, 0) + 1, false);
    end loop;
end $$;
