// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

/// The store program's own tables; docs/database.md explains each. What makes them is plain SQL for every engine: types
/// text, integer, bigint and double precision, no row numbers, times as recordTime() writes them.
namespace harrowby::app {

struct RecordTable
{
    QString name;
    QStringList making;       ///< statements that make it and its indexes, and do nothing where they are there
    QStringList columns = {}; ///< of one that is only added to: all of them, its key first
    /// Made as texts, since what stands in the columns of figures of a store file may be anything, and these keep it.
    /// On a server they are figures, as those are there.
    QStringList figures = {};
    /// Further tables that nobody else writes to while writes are done together that begin with this one.
    QStringList guarded = {};
};

namespace kept {

/// What belongs to the shop and not to one machine: Name, Value.
[[nodiscard]] const RecordTable &setting();

/// Codes of items: Code, StockID, Units.
[[nodiscard]] const RecordTable &code();

/// Who did what beside the till's own log, only ever added to: DeedID, DoneAt, Kind, Who, Place, What. See Deeds.
[[nodiscard]] const RecordTable &activity();

/// Openings of a cash drawer by hand, only ever added to: OpeningID, OpenedAt, OpenedBy, Drawer, Reason.
[[nodiscard]] const RecordTable &drawerOpening();

/// Carts that are held: HeldID, Word, HeldAt, HeldBy, HeldLines, Total; and the lines of each in HarrowbyHeldLine:
/// HeldID, Position, StockID, StockName, Quantity, Cost, CostByHand.
[[nodiscard]] const RecordTable &held();

/// How purchases were paid, one row for each part: PaymentID, Part, PurchaseID, State, Way, Amount, Given, Total,
/// Items, Seller, TakenAt, Drawer, Run, Origin, BackAt, BackWhy. And the runs of the program at a till, in HarrowbyRun:
/// Run, Drawer, Since, StartedAt, EndedAt, Locked.
[[nodiscard]] const RecordTable &payment();

/// Imports of CSV files, staged, carried out or taken back: ImportID, Kind, State, FileName, FileHash, Choices, Owner,
/// StagedAt, DoneAt, DoneBy, DoneUser, TakenBackAt, TakenBackBy, NewRows, ChangedRows, UnchangedRows, RefusedRows.
/// Their rows are in HarrowbyImportRow, and what goes with them in HarrowbyImportCode and HarrowbyImportCategory.
[[nodiscard]] const RecordTable &import();

/// The same, for what writes what was staged into the store's own tables, or takes it out of them.
[[nodiscard]] const RecordTable &importing();

/// All of them, each once.
[[nodiscard]] const QList<const RecordTable *> &all();
/// RecordTable::making as a server takes it.
[[nodiscard]] QStringList makingOnServer(const RecordTable &table);

/// Those of them that are only ever added to: no row is changed or deleted, and Records has the engine refuse it.
[[nodiscard]] const QList<const RecordTable *> &onlyAddedTo();
[[nodiscard]] bool isOnlyAddedTo(const RecordTable &table);

} // namespace kept

} // namespace harrowby::app
