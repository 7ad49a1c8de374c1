// SPDX-License-Identifier: MIT
#include "store/recordset.h"
#include "store/statement_texts.h"
#include "tests/doubles/server_shop.h"
#include "tests/program/test_program.h"
#include "tests/store/scratch_store.h"

#include <QTest>

using namespace harrowby;
using namespace Qt::StringLiterals;

/// DbField::utf8() gives the same text as DbField::text().
class FieldTextTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void saysWhatTextSays_data();
    void saysWhatTextSays();
    void sameFromMemory();
    void seesWhatIsWritten();
    void nothingToRead();
};

namespace {

QString inPlace(DbRecordset &rows, const QString &column)
{
    QByteArray buffer;
    const std::optional<QUtf8StringView> text = rows.Field(column).utf8(buffer);
    return text ? text->toString() : u"none"_s;
}

/// In a column of figures; a server keeps no other text there.
QString textOfAFigure()
{
    return test::shopsAreOnAServer() ? u"2.25"_s : u"free"_s;
}

/// Values of every kind in columns that keep them as they are.
void fill(const ScratchStore &store)
{
    QVERIFY(store.run(u"insert into StockList (StockID, StockName, StockCategory, StockCost, StockReorderLevel,"
                      " StockAvailable, StockUse) values ('a1', 'crème brûlée', '', 12.5, 3, null, x'4142')"_s));
    QVERIFY(store.run(u"insert into StockList (StockID, StockCost, StockReorderLevel) values ('b', '%1', 1e300)"_s.arg(
        textOfAFigure())));
}

} // namespace

void FieldTextTest::saysWhatTextSays_data()
{
    QTest::addColumn<int>("access");
    QTest::newRow("read") << static_cast<int>(DbRecordset::Access::Read);
    QTest::newRow("edit") << static_cast<int>(DbRecordset::Access::Edit);
    QTest::newRow("walk") << static_cast<int>(DbRecordset::Access::Walk);
}

void FieldTextTest::saysWhatTextSays()
{
    QFETCH(const int, access);
    const ScratchStore store;
    fill(store);
    DbRecordset rows;
    rows.Open(statements::allStock(), store.connection(), static_cast<DbRecordset::Access>(access));
    for (int row = 0; row < 2; ++row, rows.MoveNext()) {
        QVERIFY(!rows.IsEof());
        for (const QString &column : {u"StockID"_s, u"stockname"_s, u"StockCategory"_s, u"StockCost"_s,
                                      u"StockReorderLevel"_s, u"StockAvailable"_s, u"StockUse"_s})
            QCOMPARE(inPlace(rows, column), rows.Field(column).text());
    }
    QVERIFY(rows.IsEof());
}

void FieldTextTest::sameFromMemory()
{
    const ScratchStore store;
    fill(store);
    DbRecordset rows;
    rows.Open(statements::allStock(), store.connection(), DbRecordset::Access::Walk);
    finishWalks(store.connection());
    QCOMPARE(inPlace(rows, u"StockName"_s), u"crème brûlée"_s);
    QCOMPARE(inPlace(rows, u"StockCost"_s), u"12.5"_s);
    rows.MoveNext();
    QCOMPARE(inPlace(rows, u"StockID"_s), u"b"_s);
    QCOMPARE(inPlace(rows, u"StockCost"_s), textOfAFigure());
}

void FieldTextTest::seesWhatIsWritten()
{
    const ScratchStore store;
    fill(store);
    DbRecordset rows;
    rows.Open(statements::stockById(u"a1"_s), store.connection(), DbRecordset::Access::Edit);
    rows.Field(u"StockName"_s).assign(u"FLAN"_s);
    QCOMPARE(inPlace(rows, u"StockName"_s), u"FLAN"_s);
    QCOMPARE(inPlace(rows, u"StockID"_s), u"a1"_s);
    rows.Update();
    QCOMPARE(inPlace(rows, u"StockName"_s), u"FLAN"_s);
}

void FieldTextTest::nothingToRead()
{
    const ScratchStore store;
    DbRecordset rows;
    rows.Open(statements::allStock(), store.connection(), DbRecordset::Access::Walk);
    QCOMPARE(inPlace(rows, u"StockID"_s), u"none"_s);
    fill(store);
    rows.Open(statements::allStock(), store.connection(), DbRecordset::Access::Walk);
    QCOMPARE(inPlace(rows, u"NoSuchColumn"_s), u"none"_s);
    rows.MoveNext();
    rows.MoveNext();
    QCOMPARE(inPlace(rows, u"StockID"_s), u"none"_s);
}

HARROWBY_CORE_TEST(field_text_test, FieldTextTest)
#include "field_text_test.moc"
