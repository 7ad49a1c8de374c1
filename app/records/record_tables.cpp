// SPDX-License-Identifier: MIT
#include "app/records/record_tables.h"

#include <algorithm>

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

const RecordTable &activity()
{
    static const RecordTable table = {
        .name = u"HarrowbyActivity"_s,
        .making = {u"create table if not exists HarrowbyActivity "
                   "(DeedID text not null primary key, DoneAt text not null, Kind text not null, Who text not null, "
                   "Place text not null, What text not null)"_s,
                   u"create index if not exists harrowby_activity_time on HarrowbyActivity (DoneAt, DeedID)"_s},
        .columns = {u"DeedID"_s, u"DoneAt"_s, u"Kind"_s, u"Who"_s, u"Place"_s, u"What"_s}};
    return table;
}

const RecordTable &drawerOpening()
{
    static const RecordTable table = {
        .name = u"HarrowbyDrawerOpening"_s,
        .making = {u"create table if not exists HarrowbyDrawerOpening "
                   "(OpeningID text not null primary key, OpenedAt text not null, OpenedBy text not null, Drawer text "
                   "not null, Reason text not null)"_s},
        .columns = {u"OpeningID"_s, u"OpenedAt"_s, u"OpenedBy"_s, u"Drawer"_s, u"Reason"_s}};
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

const RecordTable &payment()
{
    // The runs' table first: where the payments' table is, so is that of the runs.
    static const RecordTable table = {
        u"HarrowbyPayment"_s,
        {u"create table if not exists HarrowbyRun "
         "(Run bigint not null primary key, Drawer text not null, Since text not null, StartedAt text not null, "
         "EndedAt text not null, Locked integer not null)"_s,
         u"create index if not exists harrowby_run_open on HarrowbyRun (EndedAt)"_s,
         u"create table if not exists HarrowbyPayment "
         "(PaymentID text not null, Part integer not null, PurchaseID text not null, State text not null, "
         "Way text not null, Amount bigint not null, Given bigint not null, Total bigint not null, "
         "Items text not null, Seller text not null, TakenAt text not null, Drawer text not null, "
         "Run bigint not null, Origin integer not null, BackAt text not null, BackWhy text not null, "
         "primary key (PaymentID, Part))"_s,
         u"create index if not exists harrowby_payment_purchase on HarrowbyPayment (PurchaseID, State)"_s}};
    return table;
}

const RecordTable &import()
{
    // The rows' tables first: where the imports' table is, so are those. Their columns of old and new values have none
    // of the engine's types for figures, since what stands in a store's column may be anything.
    static const RecordTable table = {
        .name = u"HarrowbyImport"_s,
        .making =
            {u"create table if not exists HarrowbyImportRow "
             "(ImportID bigint not null, Line bigint not null, What integer not null, Mask integer not null, "
             "LeftOut integer not null, StockID text, "
             "NewName text, NewCategory text, NewCost text, NewLevel text, NewAvailable text, NewUse text, "
             "NewUpdated text, NewModified text, NewAdded text, NewReorderUser text, "
             "OldName text, OldCategory text, OldCost text, OldLevel text, OldAvailable text, OldUse text, "
             "OldUpdated text, OldModified text, OldReorderUser text, "
             "AtColumn text, Reason text, primary key (ImportID, Line))"_s,
             u"create index if not exists harrowby_import_item on HarrowbyImportRow (StockID, ImportID)"_s,
             u"create table if not exists HarrowbyImportCode "
             "(ImportID bigint not null, Line bigint not null, What integer not null, LeftOut integer not null, "
             "Code text, StockID text, Units integer, OldStockID text, OldUnits integer, "
             "Spelling1 text, Spelling2 text, Spelling3 text)"_s,
             u"create index if not exists harrowby_import_code on HarrowbyImportCode (ImportID, Line)"_s,
             u"create table if not exists HarrowbyImportCategory "
             "(ImportID bigint not null, Line bigint not null, LeftOut integer not null, CategoryName text, "
             "EntryDate text)"_s,
             u"create index if not exists harrowby_import_category on HarrowbyImportCategory (ImportID, Line)"_s,
             u"create table if not exists HarrowbyImport "
             "(ImportID bigint not null primary key, Kind text not null, State text not null, FileName text not null, "
             "FileHash text not null, Choices text not null, Owner text not null, StagedAt text not null, "
             "DoneAt text not null, DoneBy text not null, DoneUser text not null, TakenBackAt text not null, "
             "TakenBackBy text not null, "
             "NewRows bigint not null, ChangedRows bigint not null, UnchangedRows bigint not null, "
             "RefusedRows bigint not null)"_s},
        .figures = {u"NewCost"_s, u"NewLevel"_s, u"NewAvailable"_s, u"OldCost"_s, u"OldLevel"_s, u"OldAvailable"_s}};
    return table;
}

const RecordTable &importing()
{
    static const RecordTable table = [] {
        RecordTable same = import();
        same.guarded = {u"StockList"_s, u"InventoryCategory"_s, code().name};
        return same;
    }();
    return table;
}

const QList<const RecordTable *> &all()
{
    static const QList<const RecordTable *> tables = {&setting(), &code(),    &activity(), &drawerOpening(),
                                                      &held(),    &payment(), &import()};
    return tables;
}

QStringList makingOnServer(const RecordTable &table)
{
    QStringList making = table.making;
    for (QString &statement : making) {
        for (const QString &figure : table.figures)
            statement.replace(u' ' + figure + u" text"_s, u' ' + figure + u" double precision"_s);
    }
    return making;
}

const QList<const RecordTable *> &onlyAddedTo()
{
    static const QList<const RecordTable *> tables = {&activity(), &drawerOpening()};
    return tables;
}

bool isOnlyAddedTo(const RecordTable &table)
{
    return std::ranges::any_of(onlyAddedTo(), [&](const RecordTable *one) { return one->name == table.name; });
}

} // namespace harrowby::app::kept
