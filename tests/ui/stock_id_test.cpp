// SPDX-License-Identifier: MIT
#include "tests/support/counter.h"

#include "tests/program/test_program.h"
#include "tests/ui/stock_form.h"
#include "ui/widgets/pick_list.h"
#include "ui/widgets/row_list.h"
#include "ui/widgets/text_table_model.h"

#include <QAbstractButton>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::test;

/// Automatic IDs of stock items.
class StockIdTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void firstAutomaticId();
    void automaticIds_data();
    void automaticIds();
    void automaticIdsCountLiterally_data();
    void automaticIdsCountLiterally();
    void automaticIdsRunOut_data();
    void automaticIdsRunOut();
    void automaticIdOfAQuotedCategory();
    void automaticIdForAListedName();
};

void StockIdTest::firstAutomaticId()
{
    Counter counter;
    openStock(counter);
    enter(counter, bun);
    save(counter);
    QCOMPARE(counter.connection->statements,
             (QStringList{u"Select count(*) as counts from StockList where StockID like 'OTH-*'"_s,
                          u"Select * from StockList where StockID = 'OTH-0001'"_s,
                          u"Select * from StockList where UPPER(StockName) = 'BUN'"_s, u"insert StockList"_s,
                          u"INSERT INTO SysUsage (SystemUsage,Times,Dates) Values ('Stock [BUN] with ID [OTH-0001] has "
                          "been added successfully.','2018-03-05 14:07:09','2018-03-05 14:07:09')"_s,
                          u"Select * from StockList where StockUse = 'Enabled'"_s}));
    QCOMPARE(storedIds(counter), QStringList{u"OTH-0001"_s});
    QCOMPARE(counter.text("StatusBar1_2"), u"Stock [BUN] with ID [OTH-0001] has been added successfully."_s);
    QCOMPARE(counter.text("Combo6"), u"(Auto ID)"_s); // the fields stay as they are
}

void StockIdTest::automaticIds_data()
{
    QTest::addColumn<QString>("category");
    QTest::addColumn<QStringList>("taken");
    QTest::addColumn<QString>("id");
    QTest::newRow("second") << u"BEVERAGES"_s << QStringList{u"BEV-0001"_s} << u"BEV-0002"_s;
    QTest::newRow("first gap") << u"BEVERAGES"_s << QStringList{u"BEV-0001"_s, u"BEV-0003"_s} << u"BEV-0002"_s;
    QTest::newRow("to the letter") << u"BEVERAGES"_s << QStringList{u"bev-0001"_s} << u"BEV-0001"_s;
    QTest::newRow("small letters") << u"beverages"_s << QStringList{u"BEV-0001"_s} << u"BEV-0002"_s;
    QTest::newRow("short category") << u"Ab"_s << QStringList() << u"AB-0001"_s;
    QTest::newRow("blanks around") << u"  tea "_s << QStringList() << u"TEA-0001"_s;
    QTest::newRow("no wildcard") << u"%"_s << QStringList{u"%-0001"_s, u"X-0001"_s} << u"%-0002"_s;
}

void StockIdTest::automaticIds()
{
    QFETCH(const QString, category);
    QFETCH(const QStringList, taken);
    Counter counter;
    for (const QString &id : taken)
        counter.file.addItem(id, u"NAME OF "_s + id, 1, 1);
    openStock(counter);
    QStringList texts = bun;
    texts[1] = category;
    enter(counter, texts);
    save(counter);
    QTEST(storedIds(counter).last(), "id");
    QCOMPARE(storedIds(counter).size(), taken.size() + 1);
}

void StockIdTest::automaticIdsCountLiterally_data()
{
    QTest::addColumn<QString>("id");
    QTest::addColumn<QString>("free");
    QTest::newRow("asterisk") << u"OTH-*"_s << u"OTH-0002"_s;
    QTest::newRow("asterisk, small letters") << u"oth-*"_s << u"OTH-0002"_s;
    QTest::newRow("asterisk not at the end") << u"OTH-*1"_s << u"OTH-0001"_s;
    QTest::newRow("a number") << u"OTH-0007"_s << u"OTH-0001"_s;
}

void StockIdTest::automaticIdsCountLiterally()
{
    QFETCH(const QString, id);
    Counter counter;
    counter.file.addItem(id, u"TEA"_s, 1, 1);
    openStock(counter);
    enter(counter, bun);
    save(counter);
    QTEST(storedIds(counter).last(), "free");
}

void StockIdTest::automaticIdsRunOut_data()
{
    QTest::addColumn<int>("counted");
    QTest::addColumn<QString>("taken");
    QTest::addColumn<QString>("id"); // empty: the save ends silently
    QTest::newRow("one left") << 32766 << QString() << u"OTH-32767"_s;
    QTest::newRow("the last is taken") << 32766 << u"OTH-32767"_s << QString();
    QTest::newRow("none left") << 32767 << QString() << QString();
    QTest::newRow("the count does not fit") << 32768 << QString() << u"OTH-0001"_s;
}

void StockIdTest::automaticIdsRunOut()
{
    QFETCH(const int, counted);
    QFETCH(const QString, taken);
    QFETCH(const QString, id);
    Counter counter;
    counter.file.sql(u"UPDATE StoreSettings SET ShowDetails = 1; "
                     "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < %1) "
                     "INSERT INTO StockList (StockID) SELECT 'OTH-*' FROM n"_s.arg(counted));
    if (!taken.isEmpty())
        counter.file.addItem(taken, u"TEA"_s, 1, 1);
    openStock(counter);
    enter(counter, bun);
    if (!id.isEmpty())
        counter.boxes.expect(u"Stock [BUN] with ID [%1] has been added successfully."_s.arg(id), box::Information);
    save(counter);
    QCOMPARE(counter.file.cell(u"SELECT StockID FROM StockList WHERE StockName = 'BUN'"_s),
             id.isEmpty() ? u"(no row)"_s : id);
    if (id.isEmpty())
        QCOMPARE(counter.connection->statements.size(), taken.isEmpty() ? 1 : 2);
}

void StockIdTest::automaticIdOfAQuotedCategory()
{
    Counter counter;
    counter.file.addItem(u"A'B-0001"_s, u"TEA"_s, 1, 1);
    openStock(counter);
    QStringList texts = bun;
    texts[1] = u"A'BC"_s;
    enter(counter, texts);
    save(counter); // both statements fail, so the first number is taken as free
    QCOMPARE(storedIds(counter), (QStringList{u"A'B-0001"_s, u"A'B-0001"_s}));
}

void StockIdTest::automaticIdForAListedName()
{
    Counter counter;
    counter.file.addItem(u"A1"_s, u"Bun"_s, 1, 1);
    openStock(counter);
    enter(counter, bun);
    counter.boxes.expect(
        u"Update Stock [A1  |  BUN] with OTH-0001  |  BUN, OTHER CATEGORY, Unit Cost 1.50, R. Level 3, "
        "Avail. 20, Enabled?"_s,
        box::AskDefaultNo, Answer::Yes);
    save(counter);
    QCOMPARE(counter.file.rows(u"SELECT StockID, StockName FROM StockList"_s), QStringList{u"OTH-0001|BUN"_s});
    QCOMPARE(counter.text("StatusBar1_2"), u"Stock [BUN] with ID [OTH-0001] has been updated successfully."_s);
    QCOMPARE(listed(counter), (QStringList{u"A1|BUN"_s, u"OTH-0001|BUN"_s})); // the old one until the next refresh
}

HARROWBY_TEST(stock_id_test, StockIdTest)
#include "stock_id_test.moc"
