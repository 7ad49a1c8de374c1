// SPDX-License-Identifier: MIT
#include "app/shop/store_fit.h"

#include "app/shop/schema.h"

#include <QRegularExpression>

#include <sqlite3.h>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

using Problem = std::optional<StoreProblem>;

/// What the component does with a table, apart from reading it.
struct Use
{
    QString table;
    QStringList inserted;
    QStringList updated;
    QString deletedBy; ///< condition; empty when no row is deleted
    QString foundBy;   ///< condition; empty when all rows are read
    bool byRow = false;
};

struct TableColumn
{
    QString name;
    QString type;
    bool mustHaveValue = false; ///< and has no default
    bool isKey = false;
    bool isGenerated = false;
};

struct Table
{
    QList<TableColumn> columns;
    bool hasRowIds = true;

    [[nodiscard]] const TableColumn *find(const QString &name) const
    {
        for (const TableColumn &column : columns) {
            if (column.name.compare(name, Qt::CaseInsensitive) == 0)
                return &column;
        }
        return nullptr;
    }
};

QStringList columnsOf(const QString &table)
{
    for (const StoreTable &known : storeTables()) {
        if (known.name == table)
            return known.columns;
    }
    return {};
}

bool isEmpty(sqlite3 *database, const QString &table)
{
    return readText(database, u"SELECT 1 FROM %1 LIMIT 1"_s.arg(table)).isEmpty();
}

/// The settings row is added only to an empty table; the users belong to the host.
QList<Use> usesOf(sqlite3 *database)
{
    const auto all = columnsOf;
    const auto stock = u"StockList"_s;
    const auto settings = u"StoreSettings"_s;
    return {
        {u"Users"_s, {}, {}, {}, u"UPPER(Username) = ''"_s},
        {u"InventoryCategory"_s,
         all(u"InventoryCategory"_s),
         {u"CategoryName"_s},
         u"CategoryName = ''"_s,
         u"CategoryName = ''"_s},
        {stock, all(stock), all(stock), u"Upper(StockID) = ''"_s, u"UPPER(StockName) = ''"_s, true},
        {u"PurchaseCart"_s, all(u"PurchaseCart"_s), {}, u"PurchaseID = ''"_s, u"PurchaseID = ''"_s},
        {settings, isEmpty(database, settings) ? all(settings) : QStringList(), all(settings), {}, {}},
        {u"SysUsage"_s, all(u"SysUsage"_s), {}, {}, {}},
    };
}

Result<Table, SqlError> readTable(sqlite3 *database, const QString &name)
{
    Table table;
    constexpr int generatedVirtual = 2;
    constexpr int generatedStored = 3;
    SqliteStatement columns(
        database, u"SELECT name, type, \"notnull\" AND dflt_value IS NULL, pk, hidden FROM pragma_table_xinfo(?1)"_s,
        {name});
    while (columns.next()) {
        const bool generated = columns.number(4) == generatedVirtual || columns.number(4) == generatedStored;
        table.columns << TableColumn{columns.text(0), columns.text(1), columns.number(2) != 0, columns.number(3) != 0,
                                     generated};
    }
    table.hasRowIds =
        readText(database, u"SELECT wr FROM pragma_table_list(?1) WHERE schema = 'main'"_s, {name}) != u"1"_s;
    if (columns.error())
        return Unexpected(*columns.error());
    return table;
}

/// The name by which a row can be found that none of the columns has taken; empty when there is none.
QString rowIdName(const Table &table)
{
    for (const QString &name : {u"_rowid_"_s, u"rowid"_s, u"oid"_s}) {
        if (table.hasRowIds && table.find(name) == nullptr)
            return name;
    }
    return {};
}

Problem judgeColumns(const Table &table, const Use &use, const QString &path)
{
    for (const QString &name : use.inserted + use.updated) {
        const TableColumn *column = table.find(name);
        if (column != nullptr && column->isGenerated)
            return storeProblem(ProblemKind::GeneratedColumn, path, use.table + u'.' + column->name);
    }
    if (use.inserted.isEmpty())
        return {};
    for (const TableColumn &column : table.columns) {
        const bool givesItself = column.isGenerated || (table.hasRowIds && column.isKey &&
                                                        column.type.compare(u"INTEGER"_s, Qt::CaseInsensitive) == 0);
        if (column.mustHaveValue && !givesItself && !use.inserted.contains(column.name, Qt::CaseInsensitive))
            return storeProblem(
                ProblemKind::Unfit, path,
                u"the column %1.%2 must have a value, and none is known for it"_s.arg(use.table, column.name));
    }
    return {};
}

QStringList statementsOf(const Use &use, const QString &rowId)
{
    QStringList texts = {u"SELECT * FROM "_s + use.table};
    if (!use.foundBy.isEmpty())
        texts << u"SELECT * FROM %1 WHERE %2"_s.arg(use.table, use.foundBy);
    if (!use.inserted.isEmpty())
        texts << u"INSERT INTO %1 (%2) VALUES (%3)"_s.arg(use.table, use.inserted.join(u", "_s),
                                                          QStringList(use.inserted.size(), u"?"_s).join(u", "_s));
    const QString which = use.byRow ? u" WHERE %1 = 1"_s.arg(rowId) : QString();
    if (!use.updated.isEmpty())
        texts << u"UPDATE %1 SET %2 = ?%3"_s.arg(use.table, use.updated.join(u" = ?, "_s), which);
    if (!use.deletedBy.isEmpty())
        texts << u"DELETE FROM %1 WHERE %2"_s.arg(use.table, use.deletedBy);
    return texts;
}

/// "the index NAME", "the trigger NAME" of the table that calls the function which the engine misses; else the table.
QString culprit(sqlite3 *database, const QString &table, const QString &reason)
{
    static const QRegularExpression missing(uR"((?:no such|unknown) function: (\w+))"_s);
    const QString function = missing.match(reason).captured(1);
    const QRegularExpression call(uR"(\b%1["`\]]?\s*\()"_s.arg(function), QRegularExpression::CaseInsensitiveOption);
    SqliteStatement parts(database,
                          u"SELECT type, name, sql FROM sqlite_master WHERE tbl_name = ?1 COLLATE NOCASE AND "
                          "type IN ('index', 'trigger') ORDER BY type"_s,
                          {table});
    while (!function.isEmpty() && parts.next()) {
        if (call.match(parts.text(2)).hasMatch())
            return u"the %1 %2"_s.arg(parts.text(0), parts.text(1));
    }
    return u"the table "_s + table;
}

/// Only prepares the statement: that resolves every index, trigger and constraint it would touch, and runs nothing.
Problem judgeStatements(sqlite3 *database, const Use &use, const QString &rowId, const QString &path)
{
    for (const QString &text : statementsOf(use, rowId)) {
        const SqliteStatement statement(database, text);
        if (!statement.error())
            continue;
        const QString reason = statement.error()->reason;
        if (statement.error()->code != SQLITE_ERROR)
            return engineProblem(*statement.error(), path);
        return storeProblem(ProblemKind::Unfit, path,
                            u"%1 cannot work (%2)"_s.arg(culprit(database, use.table, reason), reason));
    }
    return {};
}

Problem judgeUse(sqlite3 *database, const Use &use, const QString &path)
{
    const auto table = readTable(database, use.table);
    if (!table)
        return engineProblem(table.error(), path);
    const QString rowId = rowIdName(*table);
    if (use.byRow && rowId.isEmpty())
        return storeProblem(ProblemKind::NoRowIdentity, path, use.table);
    if (auto problem = judgeColumns(*table, use, path))
        return problem;
    return judgeStatements(database, use, rowId, path);
}

} // namespace

std::optional<StoreProblem> judgeFit(sqlite3 *database, const QString &path)
{
    for (const Use &use : usesOf(database)) {
        if (auto problem = judgeUse(database, use, path))
            return problem;
    }
    return {};
}

} // namespace harrowby::app
