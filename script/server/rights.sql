-- Who may do what in the store. The till's program and the office's can do what their statements do, and nothing else.
-- Run as superuser, after the tables are made; can be run again.

revoke all on database harrowby from public;
grant connect on database harrowby to harrowby_till, harrowby_office, harrowby_owner, harrowby_standby;
revoke all on schema public from public;
revoke all on schema harrowby from public;
grant usage on schema harrowby to harrowby_till, harrowby_office;

-- Neither code of their own nor files of the server's.
revoke usage on language plpgsql from public;
revoke execute on function lo_creat(integer), lo_create(oid), lo_from_bytea(oid, bytea), lo_put(oid, bigint, bytea),
    lo_open(oid, integer), lowrite(integer, bytea) from public;

revoke all on all tables in schema harrowby from public, harrowby_till, harrowby_office;
revoke all on all functions in schema harrowby from public;
grant execute on all functions in schema harrowby to harrowby_till, harrowby_office;
-- A store is copied into an empty one by an office, and replaced as a whole only by one that acts for the owner.
revoke execute on function harrowby.lock_store(), harrowby.follow_identities() from harrowby_till;
revoke execute on function harrowby.empty_store() from harrowby_till, harrowby_office;

do $$
declare
    right_to record;
begin
    for right_to in
        select * from (values
            -- table, the till, the office
            ('Users', 'select', 'select, insert, update, delete'),
            ('InventoryCategory', 'select, insert, update, delete', 'select, insert, update, delete'),
            ('StockList', 'select, insert, update, delete', 'select, insert, update, delete'),
            ('PurchaseCart', 'select, insert, delete', 'select, insert, update, delete'),
            ('StoreSettings', 'select, insert, update', 'select, insert, update'), -- its one row is added with the first save,
            ('SysUsage', 'insert', 'select, insert'),
            ('HarrowbyActivity', 'insert', 'select, insert'),
            ('HarrowbyCode', 'select, update', 'select, insert, update, delete'),
            ('HarrowbyDrawerOpening', 'insert', 'select, insert'),
            ('HarrowbyHeld', 'select, insert, delete', 'select, insert'), -- a store that is copied in may hold carts
            ('HarrowbyHeldLine', 'select, insert, delete', 'select, insert'),
            ('HarrowbyImport', '', 'select, insert, update, delete'),
            ('HarrowbyImportRow', '', 'select, insert, update, delete'),
            ('HarrowbyImportCode', '', 'select, insert, update, delete'),
            ('HarrowbyImportCategory', '', 'select, insert, update, delete'),
            ('HarrowbyPayment', 'select, insert, update, delete', 'select, insert, update, delete'),
            ('HarrowbyRun', 'select, insert, update', 'select, insert, update'),
            ('HarrowbySetting', 'select', 'select, insert, update, delete')
        ) as rights (named, till, office)
    loop
        continue when to_regclass('harrowby.' || right_to.named) is null; -- an older store: update gives the rights later
        if right_to.till <> '' then
            execute format('grant %s on harrowby.%I to harrowby_till', right_to.till, lower(right_to.named));
        end if;
        execute format('grant %s on harrowby.%I to harrowby_office', right_to.office, lower(right_to.named));
    end loop;
end $$;
