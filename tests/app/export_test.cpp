// SPDX-License-Identifier: MIT
#include "app/export/export.h"

#include "app/backup/backup_place.h"
#include "app/csv/csv_reader.h"
#include "app/csv/stored_cell.h"
#include "app/records/record_tables.h"
#include "tests/app/store_files.h"
#include "tests/program/test_program.h"

#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>

#include <limits>
#include <memory>

using namespace harrowby;
using namespace harrowby::app;
using namespace harrowby::app::test;
using namespace Qt::StringLiterals;

namespace {

using Ends = ExportEnd::Outcome;

#if defined(__SANITIZE_ADDRESS__)
constexpr int manyItems = 5'000;
#else
constexpr int manyItems = 100'000;
#endif

bool goOn(const WorkStep &)
{
    return true;
}

QByteArray bytesIn(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// A value as "typeof:bytes", the same for a stored one and for one that was read back.
QString described(const DbValue &value, bool isText = false)
{
    if (const auto *whole = std::get_if<std::int64_t>(&value))
        return u"integer:%1"_s.arg(*whole);
    if (const auto *real = std::get_if<double>(&value))
        return u"real:%1"_s.arg(*real, 0, 'g', 17);
    if (const auto *text = std::get_if<QString>(&value))
        return u"text:"_s + QString::fromLatin1(text->toUtf8().toHex());
    if (const auto *bytes = std::get_if<QByteArray>(&value))
        return (isText ? u"text:"_s : u"blob:"_s) + QString::fromLatin1(bytes->toHex());
    return u"null"_s;
}

QStringList describedRow(const SqliteStatement &query, int columns)
{
    QStringList row;
    for (int i = 0; i < columns; ++i) {
        const auto utf8 = query.utf8(i);
        row << (utf8 ? described(utf8->toByteArray(), true) : described(query.value(i)));
    }
    return row;
}

/// Values that are odd in one way or another.
QList<StoredValue> oddValues()
{
    using Limits = std::numeric_limits<double>;
    QList<StoredValue> odd = {{DbValue(), false},
                              {std::numeric_limits<std::int64_t>::min(), false},
                              {Limits::infinity(), false},
                              {-Limits::infinity(), false},
                              {1e300, false},
                              {5.0, false},
                              {0.1, false},
                              {QByteArray(), false},
                              {QByteArray("\x00\xFF"
                                          "blob",
                                          6),
                               false},
                              {QByteArray("bad \xC3( \xED\xA0\x80 \\ \xFF"), true},
                              {QByteArray("NUL\0behind\\x00", 14), true}};
    for (const QString &text : {u""_s,
                                u" "_s,
                                u"=1+1"_s,
                                u"-5"_s,
                                u"'"_s,
                                u"'=x"_s,
                                u"''"_s,
                                u"\t@"_s,
                                u"\uff1d1"_s,
                                u"A,B;C\tD|E"_s,
                                u"\"q\""_s,
                                u"\""_s,
                                u"a\nb\r\nc\rd"_s,
                                u"\n"_s,
                                u"12.50"_s,
                                u"1,234"_s,
                                u"8.9E+12"_s,
                                u"null"_s,
                                u"0x41"_s,
                                u"sep=;"_s,
                                u"\\x00"_s,
                                u"\ufeff"_s,
                                u"\ufeffA"_s,
                                u"\u05e7\u05e4\u05d4 \u202e\u200f"_s,
                                u"\U0001F34E"_s,
                                u"A'B"_s,
                                u"ID  |  NAME"_s,
                                QString(10'000, u'X'),
                                QString(10'000, u'"')})
        odd << StoredValue{text, false};
    return odd;
}

void insertRow(sqlite3 *store, const QString &table, const QList<StoredValue> &row)
{
    QStringList marks;
    QList<DbValue> values;
    for (const StoredValue &value : row) {
        marks << (value.isText ? u"cast(? as text)"_s : u"?"_s);
        values << value.value;
    }
    const auto error = runSql(store, u"insert into %1 values (%2)"_s.arg(table, marks.join(u", "_s)), values);
    QVERIFY2(!error, error ? qPrintable(error->reason) : "");
}

struct ListForm
{
    ExportKind kind;
    QString table;
    const QList<StoredColumn> &columns;
    QString order;
};

QList<ListForm> allLists()
{
    return {{ExportKind::Items, u"StockList"_s, itemColumns(), {}},
            {ExportKind::Categories, u"InventoryCategory"_s, categoryColumns(), {}},
            {ExportKind::Codes, u"HarrowbyCode"_s, codeColumns(), u" order by Code"_s},
            {ExportKind::Purchases, u"PurchaseCart"_s, purchaseColumns(), u" order by PurchasedDate, PurchaseID"_s}};
}

QString namesOf(const QList<StoredColumn> &columns)
{
    QStringList names = exportHeadings(columns);
    names.removeLast();
    return names.join(u", "_s);
}

} // namespace

class ExportTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_store = m_folder->filePath(u"shop.sqlite"_s);
        m_file = m_folder->filePath(u"list.csv"_s);
    }

    void anUsualShop()
    {
        makeStore(m_store);
        runAll(m_store, {u"delete from StockList"_s,
                         u"insert into StockList values ('BEV-0001', 'TEA', 'BEVERAGES', '2.50', 5, 10.5, 'Enabled', "
                         "'21-Nov-26 10:11:12', 'ANN', 'ANN', 'BEN')"_s});
        QCOMPARE(exported(ExportKind::Items).rows, 1);
        QCOMPARE(bytesIn(m_file),
                 QByteArray("StockID,StockName,StockCategory,StockCost,StockReorderLevel,StockAvailable,StockUse,"
                            "StockLastUpdated,StockLastModified,StockAdded,StockReorderUser,As Stored\r\n"
                            "BEV-0001,TEA,BEVERAGES,2.5,5,10.5,Enabled,21-Nov-26 10:11:12,ANN,ANN,BEN,\r\n"));
        ExportRequest request;
        request.form = {CsvEncoding::Utf8, true, u';', u','};
        const ExportEnd end = exportList(m_store, m_file, request, goOn);
        QCOMPARE(end.outcome, Ends::Done);
        QCOMPARE(end.bytes, bytesIn(m_file).size());
        QVERIFY(bytesIn(m_file).startsWith("\xEF\xBB\xBFStockID;"));
        QVERIFY(bytesIn(m_file).contains(";2,5;5;10,5;"));
    }

    /// A store that never had a code has no table of them.
    void nothingIsAListToo()
    {
        makeStore(m_store);
        runAll(m_store, {u"delete from StockList"_s, u"delete from InventoryCategory"_s});
        for (const ListForm &list : allLists()) {
            QCOMPARE(exported(list.kind).rows, 0);
            QCOMPARE(bytesIn(m_file), exportHeadings(list.columns).join(u',').toUtf8() + "\r\n");
        }
        QVERIFY(column(m_store, u"select name from sqlite_master where name glob 'Harrowby*'"_s).isEmpty());
    }

    /// Each odd value in each column of each table, which takes any value as it is.
    void everyOddValueReadsBack_data()
    {
        QTest::addColumn<CsvForm>("form");
        for (const QChar separator : csvSeparators()) {
            for (const QChar sign : {u'.', u','})
                QTest::addRow("%c %c", separator.toLatin1(), sign.toLatin1())
                    << CsvForm{CsvEncoding::Utf8, sign == u',', separator, sign};
        }
    }
    void everyOddValueReadsBack()
    {
        QFETCH(const CsvForm, form);
        const auto store = openDatabase(m_store, OpenMode::Create);
        QVERIFY(store && !runSql(store->get(), u"pragma synchronous = off"_s));
        const QList<StoredValue> odd = oddValues();
        for (const ListForm &list : allLists()) {
            QVERIFY(!runSql(store->get(), u"create table %1 (%2)"_s.arg(list.table, namesOf(list.columns))));
            QVERIFY(!runSql(store->get(), u"begin"_s));
            for (qsizetype i = 0; i < odd.size(); ++i) {
                QList<StoredValue> row;
                for (qsizetype at = 0; at < list.columns.size(); ++at)
                    row << odd.at((i + at * 7) % odd.size());
                insertRow(store->get(), list.table, row);
            }
            QVERIFY(!runSql(store->get(), u"commit"_s));
            readsBack(store->get(), list, form);
        }
    }

    /// What ten shops at random hold, of the columns' usual types.
    void aRandomShopReadsBack()
    {
        const quint32 seed = QRandomGenerator::global()->generate();
        QRandomGenerator random(seed);
        qInfo("seed %u", seed);
        const QList<StoredValue> odd = oddValues();
        makeStore(m_store);
        const auto store = openDatabase(m_store, OpenMode::Write);
        QVERIFY(store && !runSql(store->get(), u"pragma synchronous = off"_s));
        for (const QString &making : kept::code().making)
            QVERIFY(!runSql(store->get(), making));
        for (int shop = 0; shop < 10; ++shop) {
            for (const ListForm &list : allLists()) {
                QVERIFY(!runSql(store->get(), u"begin"_s));
                QVERIFY(!runSql(store->get(), u"delete from "_s + list.table));
                for (int i = list.kind == ExportKind::Codes ? 0 : random.bounded(40); i > 0; --i) {
                    QList<StoredValue> row;
                    for (qsizetype at = 0; at < list.columns.size(); ++at)
                        row << odd.at(random.bounded(odd.size()));
                    insertRow(store->get(), list.table, row);
                }
                QVERIFY(!runSql(store->get(), u"commit"_s));
                CsvForm form;
                form.separator = csvSeparators().at(random.bounded(4));
                form.decimalSign = random.bounded(2) == 0 ? u'.' : u',';
                readsBack(store->get(), list, form);
            }
        }
    }

    void purchasesOfSomeDays_data()
    {
        QTest::addColumn<QDate>("from");
        QTest::addColumn<QDate>("to");
        QTest::addColumn<QString>("ids");
        const QDate first(2026, 11, 1);
        QTest::newRow("all") << QDate() << QDate() << u"E N A B C D"_s;
        QTest::newRow("one day") << first << first << u"B C"_s;
        QTest::newRow("since") << first << QDate() << u"B C D"_s;
        QTest::newRow("until") << QDate() << first << u"A B C"_s;
        QTest::newRow("none") << first.addDays(5) << first.addDays(6) << u""_s;
    }
    void purchasesOfSomeDays()
    {
        makeStore(m_store);
        runAll(m_store,
               {u"delete from PurchaseCart"_s,
                u"insert into PurchaseCart values ('D', '', 1, 1, '261102000000', 'ANN'), "
                "('A', '', 1, 1, '261031235959', 'ANN'), ('C', '', 1, 9, '261101235959', 'ANN'), "
                "('B', '', 1, 1, '261101000000', 'ZOE'), ('N', '', 1, 1, '', 'ANN'), ('E', '', 1, 1, null, 'ANN')"_s});
        QFETCH(const QDate, from);
        QFETCH(const QDate, to);
        const ExportEnd end = exportList(m_store, m_file, {ExportKind::Purchases, {}, from, to}, goOn);
        QCOMPARE(end.outcome, Ends::Done);
        QStringList ids;
        for (const QStringList &row : rowsIn({}).sliced(1))
            ids << row.constFirst();
        QTEST(ids.join(u' '), "ids");
        QCOMPARE(end.rows, ids.size());
    }

    /// Tills that sell while the list is read, and what they sell is in none of its rows.
    void itIsOfOneMoment_data()
    {
        QTest::addColumn<QString>("journal");
        QTest::newRow("log") << u"wal"_s;
        QTest::newRow("no log") << u"delete"_s;
    }
    void itIsOfOneMoment()
    {
        QFETCH(const QString, journal);
        fill(3000);
        runAll(m_store, {u"pragma journal_mode = "_s + journal});
        const auto till = openDatabase(m_store, OpenMode::Write);
        QVERIFY(till);
        int sales = 0;
        const ExportEnd end = exportList(m_store, m_file, {}, [&](const WorkStep &) {
            sales += runSql(till->get(), u"update StockList set StockAvailable = StockAvailable - 1"_s) ? 0 : 1;
            return true;
        });
        QCOMPARE(end.outcome, Ends::Done);
        QVERIFY(sales > 0);
        QSet<QString> stocks;
        for (const QStringList &row : rowsIn({}).sliced(1))
            stocks << row.at(5);
        QCOMPARE(stocks.size(), 1);
    }

    void aStoppedOneLeavesWhatWasThere()
    {
        fill(3000);
        QFile old(m_file);
        QVERIFY(old.open(QIODevice::WriteOnly) && old.write("old") == 3);
        old.close();
        int looks = 0;
        int most = 0;
        const auto count = [&](const WorkStep &step) {
            ++looks;
            most = qMax(most, step.percent);
            return true;
        };
        QCOMPARE(exportList(m_store, m_folder->filePath(u"other.csv"_s), {}, count).outcome, Ends::Done);
        QVERIFY(looks > 5);
        QVERIFY(most > 50 && most <= 100);
        for (int allowed = 0; allowed < looks; ++allowed) {
            int left = allowed;
            const ExportEnd end = exportList(m_store, m_file, {}, [&](const WorkStep &) { return left-- > 0; });
            QCOMPARE(end.outcome, Ends::Stopped);
            QCOMPARE(bytesIn(m_file), QByteArray("old"));
        }
        QCOMPARE(QDir(m_folder->path()).entryList({u"list*"_s}, QDir::AllEntries | QDir::Hidden),
                 QStringList(u"list.csv"_s));
    }

    /// A statement that sorts gives no row for a while; it is ended too.
    void sortingCanBeStopped()
    {
        makeStore(m_store);
        runAll(m_store, {u"with recursive n(i) as (select 1 union all select i + 1 from n where i < 20000) insert into "
                         "PurchaseCart select 'HV' || i, '', 1, 1, 261101000000 + (i * 7919) % 20000, 'ANN' from n"_s});
        int looks = 0;
        const ExportEnd end =
            exportList(m_store, m_file, {ExportKind::Purchases, {}, {}, {}}, [&](const WorkStep &step) {
                ++looks;
                return step.percent == WorkStep::unknown && looks < 3;
            });
        QCOMPARE(end.outcome, Ends::Stopped);
        QCOMPARE(looks, 3);
    }

    void refusedPlaces()
    {
        makeStore(m_store);
        const auto reason = [this](const QString &target) {
            const ExportEnd end = exportList(m_store, target, {}, goOn);
            return end.outcome == Ends::Failed ? end.problem : u"it was written"_s;
        };
        QVERIFY(reason({}).contains(u"choose a place"_s));
        QVERIFY(reason(m_folder->path()).contains(u"is a folder"_s));
        QVERIFY(reason(m_folder->filePath(u"none/list.csv"_s)).contains(u"There is no folder"_s));
        QVERIFY(reason(u"/dev/null"_s).contains(u"not an ordinary file"_s));
        for (const QString &suffix : {u""_s, u"-wal"_s, u"-shm"_s, u"-journal"_s})
            QVERIFY(reason(m_store + suffix).contains(u"store file itself"_s));
        QVERIFY(QFile::link(m_store, m_folder->filePath(u"link.csv"_s)));
        QVERIFY(reason(m_folder->filePath(u"link.csv"_s)).contains(u"store file itself"_s));
        QVERIFY(QFile::setPermissions(m_folder->path(),
                                      QFile::ReadOwner | QFile::ExeOwner | QFile::ReadOther | QFile::ExeOther));
        const DropRights rights;
        QVERIFY(reason(m_file).contains(u"cannot be written"_s));
    }

    void aStoreThatCannotBeRead()
    {
        QFile text(m_store);
        QVERIFY(text.open(QIODevice::WriteOnly) && text.write("no database, whatever its name says") > 0);
        text.close();
        ExportEnd end = exportList(m_store, m_file, {}, goOn);
        QCOMPARE(end.outcome, Ends::Failed);
        QVERIFY2(end.problem.contains(u"damaged"_s), qPrintable(end.problem));
        end = exportList(m_folder->filePath(u"none.sqlite"_s), m_file, {}, goOn);
        QVERIFY2(end.problem.contains(u"could not be read"_s), qPrintable(end.problem));
        QVERIFY(!QFile::exists(m_file));
    }

    void words()
    {
        const QDate today(2026, 11, 22);
        QCOMPARE(proposedExportName({}, today), u"items-2026-11-22.csv"_s);
        const ExportRequest month = {ExportKind::Purchases, {}, {2026, 11, 1}, {2026, 11, 30}};
        QCOMPARE(proposedExportName(month, today), u"purchases-2026-11-01-to-2026-11-30.csv"_s);
        QCOMPARE(proposedExportName({ExportKind::Purchases, {}, {2026, 11, 1}, {}}, today),
                 u"purchases-since-2026-11-01.csv"_s);
        QCOMPARE(exportDeedWords(month, {Ends::Done, {}, 1234, 0}, u"/x.csv"_s),
                 u"Purchases 2026-11-01 to 2026-11-30, 1,234 rows, to /x.csv"_s);
        QCOMPARE(exportDeedWords({}, {Ends::Done, {}, 1, 0}, u"/x.csv"_s), u"Items, 1 row, to /x.csv"_s);
        for (const ListForm &list : allLists())
            QCOMPARE(exportKindNamed(exportKindName(list.kind)), list.kind);
        QVERIFY(!exportKindNamed(u"users"_s));
    }

    void manyRows()
    {
        fill(manyItems);
        QCOMPARE(exported(ExportKind::Items).rows, manyItems);
        QCOMPARE(bytesIn(m_file).count('\n'), manyItems + 1);
    }

private:
    [[nodiscard]] ExportEnd exported(ExportKind kind) const
    {
        const ExportEnd end = exportList(m_store, m_file, {kind, {}, {}, {}}, goOn);
        return end.outcome == Ends::Done ? end : ExportEnd{end.outcome, end.problem, -1, 0};
    }

    void fill(int items)
    {
        makeStore(m_store);
        runAll(m_store,
               {u"delete from StockList"_s,
                u"with recursive n(i) as (select 1 union all select i + 1 from n where i < %1) insert into StockList "
                "select 'ID-' || i, 'ITEM ' || i, 'CATEGORY', i * 0.25, 5, 100, 'Enabled', '', '', '', '' from n"_s.arg(
                    items)});
    }

    [[nodiscard]] QList<QStringList> rowsIn(const CsvForm &form) const
    {
        const QByteArray bytes = bytesIn(m_file);
        CsvReader reader(bytes, form);
        QList<QStringList> rows;
        for (CsvRow row; reader.next(row);)
            rows << (row.fault ? QStringList(faultWords(row.fault->kind)) : row.cells);
        return rows;
    }

    /// The file holds what the table holds, to the byte and the type.
    void readsBack(sqlite3 *store, const ListForm &list, const CsvForm &form)
    {
        const ExportEnd end = exportList(m_store, m_file, {list.kind, form, {}, {}}, goOn);
        QVERIFY2(end.outcome == Ends::Done, qPrintable(end.problem));
        const QList<QStringList> rows = rowsIn(form);
        QVERIFY(isExportOf(rows.value(0), list.columns));
        SqliteStatement query(store, u"select %1 from %2%3"_s.arg(namesOf(list.columns), list.table, list.order));
        const int width = static_cast<int>(list.columns.size());
        qsizetype at = 1;
        for (; query.next(); ++at) {
            const auto values = readStoredRow(rows.value(at), list.columns, form.decimalSign);
            QVERIFY2(values, qPrintable(rows.value(at).join(u" / "_s).left(2000)));
            QStringList found;
            for (const StoredValue &value : *values)
                found << described(value.value, value.isText);
            QCOMPARE(found, describedRow(query, width));
        }
        QCOMPARE(rows.size(), at);
        QCOMPARE(end.rows, at - 1);
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_store;
    QString m_file;
};

HARROWBY_TEST(app_export_test, ExportTest)
#include "export_test.moc"
