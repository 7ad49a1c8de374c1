-- SPDX-License-Identifier: MIT
-- What a store file's engine understands and the server does not, or otherwise. Bodies are plain expressions, which the
-- server puts in the place of the call; so an index on lower(…) serves `like`.

-- `like`: capitals and small letters of ASCII are the same, a backslash is a character like any other.
create or replace function harrowby.alike(value text, pattern text) returns boolean
    language sql immutable parallel safe
    return pg_catalog.lower(value) operator(pg_catalog.~~) pg_catalog.replace(pg_catalog.lower(pattern), '\', '\\');

create or replace function harrowby.not_alike(value text, pattern text) returns boolean
    language sql immutable parallel safe
    return pg_catalog.lower(value) operator(pg_catalog.!~~) pg_catalog.replace(pg_catalog.lower(pattern), '\', '\\');

-- `like PATTERN escape '\'`, as ~~~.
create or replace function harrowby.alike_escaped(value text, pattern text) returns boolean
    language sql immutable parallel safe
    return pg_catalog.lower(value) operator(pg_catalog.~~) pg_catalog.lower(pattern);

do $$
begin
    if pg_catalog.to_regoperator('harrowby.~~~(text,text)') is null then
        create operator harrowby.~~~ (leftarg = text, rightarg = text, function = harrowby.alike_escaped);
    end if;
    if pg_catalog.to_regoperator('harrowby.~~(text,text)') is null then
        create operator harrowby.~~ (leftarg = text, rightarg = text, function = harrowby.alike);
    end if;
    if pg_catalog.to_regoperator('harrowby.!~~(text,text)') is null then
        create operator harrowby.!~~ (leftarg = text, rightarg = text, function = harrowby.not_alike);
    end if;
end $$;

-- total(): the sum, 0 where there is nothing to add.
create or replace aggregate harrowby.total(float8) (
    sfunc = pg_catalog.float8pl, stype = float8, initcond = '0', combinefunc = pg_catalog.float8pl, parallel = safe
);

-- What of a text counts when it is looked for, in whatever alphabet: two texts are the same when their keys are. Capitals
-- of the small letters of the capitals, as ß becomes SS and the last sigma a sigma; i, ı, I and İ are one letter. How an
-- accent was typed makes no difference, the accent does.
create or replace function harrowby.caseless_key(value text) returns text
    language sql immutable parallel safe
    return case when pg_catalog.octet_length(value) = pg_catalog.length(value) then pg_catalog.lower(value)
        else normalize(pg_catalog.replace(pg_catalog.replace(pg_catalog.lower(
            pg_catalog.upper(pg_catalog.lower(pg_catalog.upper(value collate "und-x-icu") collate "und-x-icu")
                collate "und-x-icu") collate "und-x-icu") collate "C", U&'\03C2', U&'\03C3'), U&'i\0307', 'i'), nfc)
    end;

-- Whether the text stands anywhere in the value. The key of a text that is written in the statement is made once.
create or replace function harrowby.harrowby_finds(wanted text, value text) returns boolean
    language sql immutable parallel safe
    return pg_catalog.strpos(harrowby.caseless_key(value), harrowby.caseless_key(wanted)) > 0;
