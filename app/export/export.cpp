// SPDX-License-Identifier: MIT
#include "app/export/export.h"

#include "app/backup/backup_copy.h"
#include "app/csv/stored_cell.h"
#include "app/export/export_file.h"
#include "app/records/record_tables.h"
#include "basic/logging.h"
#include "engine/database.h"

#include <sqlite3.h>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

using Outcome = ExportEnd::Outcome;

constexpr int stepsBetweenLooks = 10'000; // of SQLite's machine: less than a millisecond
constexpr qint64 rowsBetweenLooks = 256;

QString readProblem(const SqlError &error)
{
    switch (error.code) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        return u"Another program keeps the store file locked. Please try again."_s;
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
        return u"The store file is damaged. Keep the backups that you have.\n(%1)"_s.arg(error.reason);
    default:
        return u"The list could not be read from the store (%1)."_s.arg(error.reason);
    }
}

ExportStop stopFor(const SqlError &error)
{
    if (error.code == SQLITE_INTERRUPT)
        return {true, {}};
    return {false, readProblem(error)};
}

/// Ends a statement that takes long by itself, such as one that sorts, when the watch says so.
class Interruption
{
public:
    Interruption(sqlite3 *store, const WorkWatch &watch) : m_store(store), m_watch(watch)
    {
        sqlite3_progress_handler(m_store, stepsBetweenLooks, look, this);
    }
    ~Interruption() { sqlite3_progress_handler(m_store, 0, nullptr, nullptr); }
    Interruption(const Interruption &) = delete;
    Interruption &operator=(const Interruption &) = delete;

    void setPercent(int percent) { m_percent = percent; }

private:
    static int look(void *self)
    {
        const auto *interruption = static_cast<const Interruption *>(self);
        return interruption->m_watch({u"The list is being read …"_s, interruption->m_percent}) ? 0 : 1;
    }

    sqlite3 *m_store;
    const WorkWatch &m_watch;
    int m_percent = WorkStep::unknown;
};

/// The rows of a table, and which of them.
struct List
{
    QString table;
    const QList<StoredColumn> &columns;
    QString which; ///< "where …" and "order by …"
    QList<DbValue> values;
    bool isOptional = false; ///< made when something is first put into it, and empty until then
};

/// Keys of days as purchases have them, YYMMDD, are in order within a century.
List purchases(const ExportRequest &request)
{
    List list = {u"PurchaseCart"_s, purchaseColumns(), {}, {}};
    const QString day = u"substr(PurchasedDate, 1, 6)"_s;
    QStringList conditions;
    if (request.from.isValid() || request.to.isValid())
        conditions << day + u" glob '[0-9][0-9][0-9][0-9][0-9][0-9]'"_s;
    const auto limit = [&](const QDate &date, const QString &comparison) {
        if (!date.isValid())
            return;
        conditions << day + comparison + u'?';
        list.values << date.toString(u"yyMMdd"_s);
    };
    limit(request.from, u" >= "_s);
    limit(request.to, u" <= "_s);
    if (!conditions.isEmpty())
        list.which = u" where "_s + conditions.join(u" and "_s);
    list.which += u" order by PurchasedDate, PurchaseID"_s;
    return list;
}

List listOf(const ExportRequest &request)
{
    switch (request.kind) {
    case ExportKind::Categories:
        return {u"InventoryCategory"_s, categoryColumns(), {}, {}};
    case ExportKind::Codes:
        return {kept::code().name, codeColumns(), u" order by Code"_s, {}, true};
    case ExportKind::Purchases:
        return purchases(request);
    case ExportKind::Items:
        break;
    }
    return {u"StockList"_s, itemColumns(), {}, {}}; // in the table's own order, which an import keeps
}

Result<bool, SqlError> isThere(sqlite3 *store, const QString &table)
{
    SqliteStatement query(store, u"select 1 from sqlite_master where type = 'table' and name = ?1 collate nocase"_s,
                          {table});
    const bool found = query.next();
    if (query.error())
        return Unexpected(*query.error());
    return found;
}

void writeRow(const SqliteStatement &query, const QList<StoredColumn> &columns, StoredRowWriter &row)
{
    for (int i = 0; i < columns.size(); ++i) {
        const StoredColumn &column = columns.at(i);
        if (const auto text = query.utf8(i))
            row.text(column, *text);
        else
            row.value(column, query.value(i));
    }
    row.end();
}

QString selectOf(const List &list)
{
    QStringList names;
    for (const StoredColumn &column : list.columns)
        names << column.name;
    return u"select %1 from %2%3"_s.arg(names.join(u", "_s), list.table, list.which);
}

std::optional<ExportStop> writeList(sqlite3 *store, const List &list, CsvWriter &out, const WorkWatch &watch)
{
    out.row(exportHeadings(list.columns));
    Interruption interruption(store, watch);
    if (list.isOptional) {
        const auto there = isThere(store, list.table);
        if (!there)
            return stopFor(there.error());
        if (!*there)
            return {};
    }
    const qint64 all =
        readText(store, u"select count(*) from %1%2"_s.arg(list.table, list.which), list.values).toLongLong();
    SqliteStatement query(store, selectOf(list), list.values);
    StoredRowWriter row(out);
    for (qint64 done = 0; query.next(); ++done) {
        writeRow(query, list.columns, row);
        if (done % rowsBetweenLooks != 0)
            continue;
        interruption.setPercent(percentOf(done, all));
        if (!watch({u"The list is being read …"_s, percentOf(done, all)}))
            return ExportStop{true, {}};
    }
    return query.error() ? std::optional(stopFor(*query.error())) : std::nullopt;
}

/// A connection of its own, whose readings are all of one moment.
Result<SqliteDatabase, SqlError> openMoment(const QString &store)
{
    auto source = openToCopy(store);
    if (!source)
        return source;
    if (const auto error = runSql(source->get(), u"BEGIN"_s))
        return Unexpected(*error);
    return source;
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

/// Fills the writer; why it did not come to its end.
std::optional<ExportStop> read(const QString &store, CsvWriter &out, const ExportRows &rows, const WorkWatch &watch)
{
    const auto source = openMoment(store);
    return source ? rows(source->get(), out, watch) : stopFor(source.error());
}

} // namespace

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
    const auto rows = [&list](sqlite3 *source, CsvWriter &out, const WorkWatch &look) {
        return writeList(source, list, out, look);
    };
    return exportRows(store, target, request.form, rows, watch);
}

} // namespace harrowby::app
