// SPDX-License-Identifier: MIT
#include "app/copy/store_copy.h"
#include "app/copy/unfit_words.h"
#include "app/records/sqlite_records.h"
#include "app/shop/schema.h"
#include "app/shop/store_create.h"
#include "tests/app/full_store.h"
#include "tests/app/store_files.h"
#include "tests/program/test_program.h"

#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;
using namespace harrowby::app::test;

namespace {

bool neverStop(const WorkStep &)
{
    return true;
}

bool isFigure(const QString &column)
{
    return column.startsWith(u"StockCost"_s);
}

/// What one of these texts is as a number; empty where it is none.
std::optional<double> numberOf(const RecordValue &value)
{
    const auto *text = std::get_if<QString>(&value);
    bool isNumber = false;
    const double number = text != nullptr ? text->toDouble(&isNumber) : 0;
    return isNumber ? std::optional(number) : std::nullopt;
}

/// A server's rules, but for what needs one: figures are numbers, texts are texts.
ColumnRules plainRules()
{
    const auto unstorable = [](const QString &table, const DbAssignments &values) -> std::optional<QString> {
        for (const auto &[column, value] : values) {
            if (isFigure(column) && std::holds_alternative<QString>(value) && !numberOf(value))
                return u"%1 holds no text (%2)"_s.arg(table, column);
            if (std::holds_alternative<QByteArray>(value))
                return u"%1 holds no bytes (%2)"_s.arg(table, column);
        }
        return {};
    };
    const auto converted = [](const QString &, const QString &column, const RecordValue &value) {
        const auto number = isFigure(column) ? numberOf(value) : std::nullopt;
        return number ? RecordValue(*number) : value;
    };
    return {unstorable, converted};
}

/// Puts another cost in the place of one that it was given.
class Forgetful final : public SqliteRecords
{
public:
    using SqliteRecords::SqliteRecords;

protected:
    Answer<std::int64_t> change(const RecordStatement &statement) override
    {
        RecordStatement changed = statement;
        for (RecordValue &value : changed.values) {
            if (value == RecordValue(2.5))
                value = 2.25;
        }
        return SqliteRecords::change(changed);
    }
};

} // namespace

/// Copying a store row by row, without a server.
class CopyTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void everyTableIsKnownWithItsColumns();
    void everyRowIsCopiedWithItsIdentity();
    void rowsThatDoNotFitAreListed();
    void ownRowsThatDoNotFitAreListed_data();
    void ownRowsThatDoNotFitAreListed();
    void textThatIsNoUtf8DoesNotFit();
    void rowThatIsWrittenOtherwiseIsNoticed();
    void rowsOfTablesThatAreOnlyAddedToStay();
    void stopIsHeeded_data();
    void stopIsHeeded();
    void foreignPartsAreNamed();
    void sumTellsRowsApart();

private:
    [[nodiscard]] QString path(const QString &name) const { return m_folder->filePath(name); }
    void makeEmptyCopy();
    [[nodiscard]] QString runOnStore(const QString &statement) const;

    std::unique_ptr<QTemporaryDir> m_folder;
    SqliteDatabase m_store;
    SqliteDatabase m_copy;
};

void CopyTest::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    makeFullStore(path(u"full.sqlite"_s));
    QVERIFY(!into(m_store, openDatabase(path(u"full.sqlite"_s), OpenMode::Write)));
    makeEmptyCopy();
}

void CopyTest::cleanup()
{
    m_store.reset();
    m_copy.reset();
    m_folder.reset();
}

void CopyTest::makeEmptyCopy()
{
    QVERIFY(!into(m_copy, openDatabase(path(u"copy.sqlite"_s), OpenMode::Create)));
    QVERIFY(!makeStoreIn(m_copy.get(), [](sqlite3 *) { return std::optional<SqlError>(); }));
}

QString CopyTest::runOnStore(const QString &statement) const
{
    const auto error = runSql(m_store.get(), statement);
    return error ? error->reason : QString();
}

/// As they are in a store that has all of them.
void CopyTest::everyTableIsKnownWithItsColumns()
{
    QStringList names;
    for (const CopiedTable &table : copiedTables()) {
        names << table.name;
        QStringList columns;
        SqliteStatement query(m_store.get(), u"select name from pragma_table_info(?1)"_s, {table.name});
        while (query.next())
            columns << query.text(0);
        QCOMPARE(table.columnNames(), columns);
        QVERIFY(!columns.isEmpty());
    }
    QStringList all;
    SqliteStatement query(m_store.get(), u"select name from sqlite_master where type = 'table'"_s);
    while (query.next())
        all << query.text(0);
    names.sort();
    all.sort();
    QCOMPARE(names, all);
}

void CopyTest::everyRowIsCopiedWithItsIdentity()
{
    SqliteRecords from(m_store.get());
    SqliteRecords to(m_copy.get());
    const ColumnRules rules = plainRules();
    StoreCopy copy(from, rules, neverStop);
    const auto unfit = copy.unfitRows();
    QVERIFY(unfit.has_value());
    QCOMPARE(unfitWords(*unfit, 9), QString());
    const auto rows = copy.copyInto(to);
    QVERIFY2(rows, rows ? "" : qPrintable(rows.error().problem));
    QCOMPARE(rows->value(u"StockList"_s), 23);
    QCOMPARE(rows->value(u"HarrowbyHeldLine"_s), 23);
    QCOMPARE(everyRow(to), everyRow(from));
}

void CopyTest::rowsThatDoNotFitAreListed()
{
    QCOMPARE(runOnStore(u"update StockList set StockCost = 'cheap' where rowid in (3, 12)"_s), QString());
    QCOMPARE(runOnStore(u"update SysUsage set Times = x'00ff' where rowid = 7"_s), QString());
    SqliteRecords from(m_store.get());
    const ColumnRules rules = plainRules();
    const auto unfit = StoreCopy(from, rules, neverStop).unfitRows();
    QVERIFY(unfit.has_value());
    QCOMPARE(unfit->count, 3);
    QCOMPARE(unfitWords(*unfit, 2), u"StockList, row 3, Tea: StockList holds no text (StockCost)\n"
                                    "StockList, row 12, a 'quoted' \"name\": StockList holds no text (StockCost)\n"
                                    "and 1 more"_s);
    QCOMPARE(unfit->first.constLast().row, u"row 7, \u05e9\u05dc\u05d5\u05dd"_s);
}

void CopyTest::ownRowsThatDoNotFitAreListed_data()
{
    QTest::addColumn<QString>("statement");
    QTest::addColumn<QString>("reason");
    QTest::newRow("a text for a number") << u"update HarrowbyCode set Units = 'many' where rowid = 1"_s
                                         << u"a column of numbers on a server holds nothing else (Units)"_s;
    QTest::newRow("bytes for a time") << u"update HarrowbyRun set Since = x'ff' where rowid = 1"_s
                                      << u"StockList holds no bytes (Since)"_s;
    QTest::newRow("half a unit") << u"update HarrowbyCode set Units = 0.5 where rowid = 1"_s
                                 << u"a column of numbers on a server holds nothing else (Units)"_s;
    QTest::newRow("too large") << u"update HarrowbyPayment set Part = 2147483648 where rowid = 1"_s
                               << u"the number is too large for its column on a server (Part)"_s;
    QTest::newRow("too long") << u"update HarrowbySetting set Name = hex(zeroblob(1301)) where rowid = 1"_s
                              << u"a text that a server looks for has at most 2600 bytes (Name)"_s;
    QTest::newRow("too long together")
        << u"update HarrowbyPayment set PurchaseID = hex(zeroblob(1000)), State = hex(zeroblob(301)) where rowid = 1"_s
        << u"a text that a server looks for has at most 2600 bytes (PurchaseID and State)"_s;
}

void CopyTest::ownRowsThatDoNotFitAreListed()
{
    QFETCH(const QString, statement);
    QCOMPARE(runOnStore(statement), QString());
    SqliteRecords from(m_store.get());
    const ColumnRules rules = plainRules();
    const auto unfit = StoreCopy(from, rules, neverStop).unfitRows();
    QVERIFY(unfit.has_value());
    QCOMPARE(unfit->count, 1);
    QTEST(unfit->first.constFirst().reason, "reason");
}

void CopyTest::textThatIsNoUtf8DoesNotFit()
{
    QCOMPARE(runOnStore(u"update StockList set StockName = cast(x'41ff42' as text) where rowid = 3"_s), QString());
    QCOMPARE(runOnStore(u"update StockList set StockName = char(0xfffd) where rowid = 4"_s), QString());
    SqliteRecords from(m_store.get());
    const ColumnRules rules = plainRules();
    const auto unfit = StoreCopy(from, rules, neverStop).unfitRows();
    QVERIFY(unfit.has_value());
    QCOMPARE(unfitWords(*unfit, 9), u"StockList, row 3, Tea: StockList holds no bytes (StockName)"_s);
}

void CopyTest::rowThatIsWrittenOtherwiseIsNoticed()
{
    SqliteRecords from(m_store.get());
    Forgetful to(m_copy.get());
    const ColumnRules rules = plainRules();
    const auto rows = StoreCopy(from, rules, neverStop).copyInto(to);
    QVERIFY(!rows);
    QVERIFY2(rows.error().problem.contains(u"does not read back as it was written"_s),
             qPrintable(rows.error().problem));
    QVERIFY(rows.error().isOfCopy);
}

void CopyTest::rowsOfTablesThatAreOnlyAddedToStay()
{
    SqliteRecords from(m_store.get());
    SqliteRecords to(m_copy.get());
    const auto key = everyRow(from).filter(u"HarrowbyActivity|"_s).constFirst().section(u'|', 1, 1).mid(1);
    const auto insert =
        u"insert into HarrowbyActivity (DeedID, DoneAt, Kind, Who, Place, What) values (?, ?, ?, ?, ?, ?)"_s;
    for (const QString &id : {key, u"later"_s})
        QVERIFY(to.write(kept::activity(), {insert, {id, u"a"_s, u"b"_s, u"c"_s, u"d"_s, u"e"_s}}).has_value());
    const ColumnRules rules = plainRules();
    const auto rows = StoreCopy(from, rules, neverStop).copyInto(to);
    QVERIFY2(rows, rows ? "" : qPrintable(rows.error().problem));
    QCOMPARE(rows->value(u"HarrowbyActivity"_s), 24);
    const QStringList there = everyRow(to).filter(u"HarrowbyActivity|"_s);
    QCOMPARE(there.size(), 24);
    QVERIFY(there.contains(u"HarrowbyActivity|t%1|ta|tb|tc|td|te"_s.arg(key)));
    QVERIFY(there.contains(u"HarrowbyActivity|tlater|ta|tb|tc|td|te"_s));
}

void CopyTest::stopIsHeeded_data()
{
    QTest::addColumn<int>("steps");
    QTest::newRow("at once") << 0;
    QTest::newRow("while it copies") << 7;
    QTest::newRow("while it compares") << 25;
}

void CopyTest::stopIsHeeded()
{
    QFETCH(int, steps);
    SqliteRecords from(m_store.get());
    SqliteRecords to(m_copy.get());
    const ColumnRules rules = plainRules();
    const WorkWatch watch = [&](const WorkStep &) { return steps-- > 0; };
    const auto rows = StoreCopy(from, rules, watch).copyInto(to);
    QVERIFY(!rows);
    QVERIFY(rows.error().stopped);
}

void CopyTest::foreignPartsAreNamed()
{
    SqliteRecords from(m_store.get());
    QCOMPARE(foreignParts(from).value_or(QStringList(u"?"_s)), QStringList());
    QCOMPARE(runOnStore(u"create table Suppliers (Name text)"_s), QString());
    QCOMPARE(runOnStore(u"alter table StockList add column Shelf text"_s), QString());
    const QStringList parts = {u"column Shelf of StockList"_s, u"table Suppliers"_s};
    QCOMPARE(foreignParts(from).value_or(QStringList(u"?"_s)), parts);
}

void CopyTest::sumTellsRowsApart()
{
    const RecordRow one = {u"a"_s, std::int64_t{1}};
    const RecordRow other = {u"a"_s, 1.0};
    RowSum there;
    RowSum back;
    RowSum otherwise;
    RowSum shifted;
    there.add(one);
    there.add(other);
    back.add(other);
    back.add(one);
    otherwise.add(one);
    otherwise.add(one);
    shifted.add({u"ai"_s, RecordValue()});
    shifted.add({u""_s, u"a"_s});
    QCOMPARE(there, back);
    QVERIFY(there != otherwise);
    QVERIFY(there != shifted);
    QCOMPARE(there.rows(), 2);
}

HARROWBY_TEST(app_copy_test, CopyTest)
#include "copy_test.moc"
