-- Exactly once: the last number of each running program, and what it does with its numbers. A number travels in the
-- transaction of its write, so it is here exactly when the write is. Can be run again any number of times.

-- A writer is one run of one program, by a random identity. No row is ever deleted: without it, a write that arrives
-- late could not be told from a new one.
create table if not exists harrowby.writer_action (
    writer uuid primary key,
    last bigint not null
) with (fillfactor = 50);

-- The first statement of a write's transaction. HB001: this number has arrived before, or was claimed.
create or replace function harrowby.act(running uuid, number bigint) returns void
    language plpgsql security definer set search_path = pg_catalog, pg_temp as $$
begin
    insert into harrowby.writer_action as mine (writer, last) values (running, number)
        on conflict (writer) do update set last = excluded.last where mine.last < excluded.last;
    if not found then
        raise exception 'this action has arrived before' using errcode = 'HB001';
    end if;
end $$;

-- What a write was computed from, within its transaction. HB002: it has changed meanwhile.
create or replace function harrowby.require(stands boolean) returns void
    language plpgsql as $$
begin
    if stands is not true then
        raise exception 'what was read has changed meanwhile' using errcode = 'HB002';
    end if;
end $$;

-- After HB001: whether this very number stands here. It writes the row in any case, so that its own confirmation is that
-- of the number too.
create or replace function harrowby.confirm_action(running uuid, number bigint) returns boolean
    language plpgsql security definer set search_path = pg_catalog, pg_temp as $$
begin
    update harrowby.writer_action as mine set last = mine.last where mine.writer = running and mine.last = number;
    return found;
end $$;

-- Takes a number away from a write that has not arrived. The last number then: `number` when the write had arrived,
-- `number` + 1 when it has not and never will, more when the writer went on after it.
create or replace function harrowby.claim_action(running uuid, number bigint) returns bigint
    language sql security definer set search_path = pg_catalog, pg_temp as $$
    insert into harrowby.writer_action as mine (writer, last) values (running, number + 1)
        on conflict (writer) do update
            set last = case when mine.last < number then excluded.last else mine.last end
        returning last
$$;
