// SPDX-License-Identifier: MIT
#include "app/records/record_tables.h"

using namespace Qt::StringLiterals;

namespace harrowby::app::kept {

const RecordTable &setting()
{
    static const RecordTable table = {u"HarrowbySetting"_s,
                                      {u"create table if not exists HarrowbySetting "
                                       "(Name text not null primary key, Value text not null)"_s}};
    return table;
}

const RecordTable &code()
{
    static const RecordTable table = {
        u"HarrowbyCode"_s,
        {u"create table if not exists HarrowbyCode "
         "(Code text not null primary key, StockID text not null, Units integer not null)"_s,
         u"create index if not exists harrowby_code_item on HarrowbyCode (StockID)"_s}};
    return table;
}

const RecordTable &held()
{
    // The lines' table first: where the carts' table is, so is that of their lines.
    static const RecordTable table = {
        u"HarrowbyHeld"_s,
        {u"create table if not exists HarrowbyHeldLine "
         "(HeldID text not null, Position integer not null, StockID text not null, StockName text not null, "
         "Quantity double precision not null, Cost double precision not null, CostByHand integer not null, "
         "primary key (HeldID, Position))"_s,
         u"create table if not exists HarrowbyHeld "
         "(HeldID text not null primary key, Word text not null, HeldAt text not null, HeldBy text not null, "
         "HeldLines integer not null, Total double precision not null)"_s}};
    return table;
}

} // namespace harrowby::app::kept
