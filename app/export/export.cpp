// SPDX-License-Identifier: MIT
#include "app/export/export.h"

#include "app/csv/stored_cell.h"
#include "app/export/export_file.h"
#include "app/records/record_tables.h"
#include "app/work/watched_store.h"
#include "basic/logging.h"

#include <sqlite3.h>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

using Outcome = ExportEnd::Outcome;

constexpr qint64 rowsBetweenLooks = 256;

QString readProblem(const DbFailure &failure)
{
    switch (failure.engineCode & 0xff) { // a server's has none
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        return u"Another program keeps the store file locked. Please try again."_s;
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
        return u"The store file is damaged. Keep the backups that you have.\n(%1)"_s.arg(failure.reason);
    default:
        return u"The list could not be read from the store (%1)."_s.arg(failure.reason);
    }
}

/// The rows of a table, and which of them.
struct List
{
    QString table;
    const QList<StoredColumn> &columns;
    QString conditions; ///< "where …"
    QString order;      ///< "order by …"
    QList<RecordValue> values;
    const RecordTable *own = nullptr; ///< when it is one of the program's, which may not be there yet
};

/// Keys of days as purchases have them, YYMMDD, are in order within a century.
List purchases(const ExportRequest &request)
{
    List list = {u"PurchaseCart"_s, purchaseColumns(), {}, u" order by PurchasedDate, PurchaseID"_s, {}};
    const QString day = u"substr(PurchasedDate, 1, 6)"_s;
    QStringList conditions;
    if (request.from.isValid() || request.to.isValid())
        conditions << u"length(%1) = 6 and trim(%1, '0123456789') = ''"_s.arg(day);
    const auto limit = [&](const QDate &date, const QString &comparison) {
        if (!date.isValid())
            return;
        conditions << day + comparison + u'?';
        list.values << date.toString(u"yyMMdd"_s);
    };
    limit(request.from, u" >= "_s);
    limit(request.to, u" <= "_s);
    if (!conditions.isEmpty())
        list.conditions = u" where "_s + conditions.join(u" and "_s);
    return list;
}

List listOf(const ExportRequest &request)
{
    switch (request.kind) {
    case ExportKind::Categories:
        return {u"InventoryCategory"_s, categoryColumns(), {}, {}, {}};
    case ExportKind::Codes:
        return {kept::code().name, codeColumns(), {}, u" order by Code"_s, {}, &kept::code()};
    case ExportKind::Purchases:
        return purchases(request);
    case ExportKind::Items:
        break;
    }
    return {u"StockList"_s, itemColumns(), {}, {}, {}}; // in the table's own order, which an import keeps
}

void writeRow(const RecordCells &cells, const QList<StoredColumn> &columns, StoredRowWriter &row)
{
    for (int i = 0; i < columns.size(); ++i) {
        const StoredColumn &column = columns.at(i);
        if (const auto text = cells.utf8(i))
            row.text(column, *text);
        else
            row.value(column, cells.value(i));
    }
    row.end();
}

QString selectOf(const List &list)
{
    QStringList names;
    for (const StoredColumn &column : list.columns)
        names << column.name;
    return u"select %1 from %2%3%4"_s.arg(names.join(u", "_s), list.table, list.conditions, list.order);
}

Records::Answer<qint64> countOf(Records &records, const List &list)
{
    const RecordStatement counting = {u"select count(*) from %1%2"_s.arg(list.table, list.conditions), list.values};
    const auto rows = list.own != nullptr ? records.read(*list.own, counting) : records.read(counting);
    if (!rows)
        return Unexpected(rows.error());
    return rows->isEmpty() ? 0 : recordNumber(rows->constFirst().constFirst());
}

std::optional<ExportStop> writeList(StoreRecords &store, const List &list, CsvWriter &out, const WorkWatch &watch)
{
    out.row(exportHeadings(list.columns));
    if (!watch({u"The list is being read …"_s, WorkStep::unknown}))
        return ExportStop{true, {}};
    const auto all = countOf(store.records(), list);
    if (!all)
        return exportStop(store, all.error());
    StoredRowWriter row(out);
    qint64 done = 0;
    const auto take = [&](const RecordCells &cells) {
        writeRow(cells, list.columns, row);
        if (done++ % rowsBetweenLooks != 0)
            return true;
        return watch({u"The list is being read …"_s, percentOf(done - 1, *all)});
    };
    const auto whole = store.records().readEach(list.own, {selectOf(list), list.values}, take);
    if (!whole)
        return exportStop(store, whole.error());
    return *whole ? std::nullopt : std::optional(ExportStop{true, {}});
}

ExportEnd logged(ExportEnd end)
{
    if (end.outcome == Outcome::Failed)
        qCWarning(lcStore).noquote() << "The export failed:" << end.problem;
    return end;
}

ExportEnd ended(const ExportStop &stop)
{
    return {stop.isStopped ? Outcome::Stopped : Outcome::Failed, stop.problem, 0, 0};
}

/// Fills the writer with what is there at one moment; why it did not come to its end.
std::optional<ExportStop> read(const QString &store, CsvWriter &out, const ExportRows &rows, const WorkWatch &watch)
{
    const auto source = WatchedStore::open(store, Access::Read, watch);
    if (!source && source.error().wasStopped)
        return ExportStop{true, {}};
    if (!source)
        return ExportStop{false, u"The list could not be read from the store.\n"_s + source.error().words};
    WatchedStore &watched = **source;
    const auto failure = watched.store().holdMoment();
    const auto stop = failure ? exportStop(watched.store(), *failure) : rows(watched.store(), out, watched.watch());
    return stop && watched.wasStopped() ? ExportStop{true, {}} : stop;
}

} // namespace

ExportStop exportStop(const StoreRecords &store, const DbFailure &failure)
{
    if (store.wasInterrupted(failure))
        return {true, {}};
    return {false, readProblem(failure)};
}

ExportEnd exportRows(const QString &store, const QString &target, const CsvForm &form, const ExportRows &rows,
                     const WorkWatch &watch)
{
    if (const auto place = checkExportPlace(store, target); !place)
        return logged({Outcome::Failed, place.error(), 0, 0});
    CsvWriter out(form);
    if (const auto stop = read(store, out, rows, watch))
        return logged(ended(*stop));
    const qint64 written = out.rows() - 1;
    ExportEnd end = putIntoPlace(out.take(), target, watch);
    end.rows = end.outcome == Outcome::Done ? written : 0;
    return logged(end);
}

ExportEnd exportList(const QString &store, const QString &target, const ExportRequest &request, const WorkWatch &watch)
{
    const List list = listOf(request);
    const auto rows = [&list](StoreRecords &source, CsvWriter &out, const WorkWatch &look) {
        return writeList(source, list, out, look);
    };
    return exportRows(store, target, request.form, rows, watch);
}

} // namespace harrowby::app
