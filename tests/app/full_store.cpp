// SPDX-License-Identifier: MIT
#include "tests/app/full_store.h"

#include "app/copy/copied_tables.h"
#include "app/records/record_dialect.h"
#include "app/records/sqlite_records.h"
#include "tests/app/store_files.h"

#include <QTest>

#include <cmath>

using namespace Qt::StringLiterals;

namespace harrowby::app::test {

namespace {

void run(sqlite3 *store, const QString &statement)
{
    const auto error = runSql(store, statement);
    QVERIFY2(!error, qPrintable(statement + u": "_s + (error ? error->reason : QString())));
}

QString textFor(qint64 row)
{
    const QStringList texts = {u"Tea"_s,
                               u"caf\u00e9 \u00d1"_s,
                               u"\u05e9\u05dc\u05d5\u05dd"_s,
                               u"a 'quoted' \"name\""_s,
                               u"back\\sl"_s,
                               u"two\nlines"_s,
                               u"100 %?"_s,
                               u""_s,
                               u" "_s,
                               QString::fromUtf8("\xf0\x9f\x8d\xb5 kettle")};
    return texts.at(row % texts.size()) + (row < texts.size() ? QString() : u' ' + QString::number(row));
}

RecordValue figureFor(qint64 row)
{
    const QList<RecordValue> figures = {
        std::int64_t{0},      0.1, std::int64_t{-3}, 2.5, std::int64_t{9007199254740991}, 1e300, {}, 1.0 / 3,
        std::int64_t{1234567}};
    return figures.at(row % figures.size());
}

RecordValue valueFor(const CopiedColumn &column, qint64 row, bool isShops)
{
    switch (column.fill) {
    case ColumnFill::Text:
        return isShops ? RecordValue(textFor(row)) : RecordValue(u"%1 %2"_s.arg(row).arg(textFor(row)));
    case ColumnFill::Figure:
        return figureFor(row);
    case ColumnFill::SmallNumber:
        return std::int64_t{row % 2};
    case ColumnFill::WholeNumber:
        return std::int64_t{row} * 1000000007;
    default:
        return 0.5 + static_cast<double>(row);
    }
}

/// The program's own columns of figures are texts in a file, and numbers on a server.
RecordValue asFigure(const RecordValue &value)
{
    if (!std::holds_alternative<QString>(value))
        return value;
    const double number = std::get<QString>(value).toDouble();
    constexpr double exact = 9007199254740992.0;
    return std::trunc(number) == number && std::abs(number) < exact ? RecordValue(static_cast<std::int64_t>(number))
                                                                    : RecordValue(number);
}

QString shown(const RecordValue &value)
{
    if (const auto *real = std::get_if<double>(&value))
        return u"r"_s + QString::number(*real, 'g', 17);
    if (const auto *whole = std::get_if<std::int64_t>(&value))
        return u"i"_s + QString::number(*whole);
    if (const auto *text = std::get_if<QString>(&value))
        return u"t"_s + *text;
    return std::holds_alternative<QByteArray>(value) ? u"b"_s : u"null"_s;
}

} // namespace

void fillEveryTable(sqlite3 *store)
{
    SqliteRecords records(store);
    run(store, u"begin"_s);
    for (const CopiedTable &table : copiedTables()) {
        if (table.made != nullptr)
            QVERIFY(!records.prepare(*table.made));
        for (qint64 row = 0; row < 23; ++row) {
            RecordRow values;
            if (table.isShops())
                values << std::int64_t{row * row + 3};
            for (const CopiedColumn &column : table.columns)
                values << valueFor(column, row, table.isShops());
            const QString columns = (table.isShops() ? u"rowid, "_s : QString()) + table.columnNames().join(u", "_s);
            const QString places = QStringList(values.size(), u"?"_s).join(u", "_s);
            QVERIFY(records
                        .write(table.records(),
                               {u"insert into %1 (%2) values (%3)"_s.arg(table.name, columns, places), values})
                        .has_value());
        }
    }
    run(store, u"update Users set Username = null where rowid = 4"_s);
    run(store, u"commit"_s);
}

void makeFullStore(const QString &path)
{
    makeStore(path);
    SqliteDatabase store;
    QVERIFY(!into(store, openDatabase(path, OpenMode::Write)));
    for (const CopiedTable &table : copiedTables()) {
        if (table.isShops())
            run(store.get(), u"delete from "_s + table.name);
    }
    fillEveryTable(store.get());
}

QStringList everyRow(Records &store)
{
    QStringList lines;
    for (const CopiedTable &table : copiedTables()) {
        const QString identity = table.isShops() ? store.dialect().rowId + u", "_s : QString();
        const auto rows =
            store.read(table.records(),
                       {u"select %1%2 from %3"_s.arg(identity, table.columnNames().join(u", "_s), table.name), {}});
        if (!rows)
            return {u"%1 cannot be read: %2"_s.arg(table.name, rows.error().reason)};
        for (const RecordRow &row : *rows) {
            QStringList values = {table.name};
            for (qsizetype column = 0; column < row.size(); ++column) {
                const qsizetype own = column - (table.isShops() ? 1 : 0);
                const bool isFigure = own >= 0 && table.columns.at(own).fill == ColumnFill::Figure;
                values << shown(isFigure ? asFigure(row.at(column)) : row.at(column));
            }
            lines << values.join(u'|');
        }
    }
    lines.sort();
    return lines;
}

QStringList everyRow(const QString &path)
{
    SqliteDatabase store;
    if (into(store, openDatabase(path, OpenMode::Write)))
        return {u"cannot be opened"_s};
    SqliteRecords records(store.get());
    return everyRow(records);
}

} // namespace harrowby::app::test
