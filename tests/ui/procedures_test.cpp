// SPDX-License-Identifier: MIT
#include "tests/program/test_program.h"
#include "tests/support/counter.h"
#include "tests/support/inventory_probe.h"

#include "store/inv_basic.h"

#include "ui/widgets/row_list.h"
#include "ui/widgets/text_table_model.h"

using namespace Qt::StringLiterals;

using namespace harrowby;
using namespace harrowby::test;

/// Edge cases of the shared procedures.
class ProceduresTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void existingItemIsUpdated();
    void existingItemIsReplaced();
    void keyOfTheCallIsLogged();
    void missingItemCostsNothing();
    void costThatDoesNotFit();
    void stockCoversARequest_data();
    void stockCoversARequest();
    void plainBox();
    void emptyMessage();
    void clockIsReadForEachColumn();
};

namespace {

const QString key = u"A1  |  TEA"_s;
const QString question = u"Item Already Exist in Cart.\r\nTo Update - YES, To Replace - NO"_s;

void openShop(Counter &counter, double available = 100)
{
    counter.file.addItem(u"A1"_s, u"TEA"_s, 2.5, available);
    counter.open();
    counter.logIn();
}

} // namespace

void ProceduresTest::existingItemIsUpdated()
{
    Counter counter;
    openShop(counter);
    const InventoryProbe probe{counter.window()};
    probe.addToCart(key, 3, false);
    counter.boxes.expect(question, box::Ask, Answer::Yes);
    probe.addToCart(key, 5, false);
    QCOMPARE(counter.cart(), QStringList{key + u"|8|20.00"_s});
    QCOMPARE(counter.text("StatusBar1_2"), u"8 of A1  |  TEA Added!"_s);
}

void ProceduresTest::existingItemIsReplaced()
{
    Counter counter;
    openShop(counter);
    const InventoryProbe probe{counter.window()};
    probe.addToCart(key, 3, false);
    counter.boxes.expect(question, box::Ask, Answer::No);
    probe.addToCart(key, 5, false);
    QCOMPARE(counter.cart(), QStringList{key + u"|5|12.50"_s});
    QCOMPARE(counter.text("Label5"), u"Total: 12.50"_s);
}

void ProceduresTest::keyOfTheCallIsLogged()
{
    Counter counter;
    openShop(counter);
    const InventoryProbe probe{counter.window()};
    probe.addToCart(key, 1, true);
    probe.addToCart(u"a1  |  tea"_s, 1, true); // the same line: compared without regard to case
    QCOMPARE(counter.cart().size(), 1);
    QCOMPARE(counter.text("StatusBar1_2"), u"2 of a1  |  tea Added!"_s);
}

void ProceduresTest::missingItemCostsNothing()
{
    Counter counter;
    openShop(counter);
    InventoryProbe{counter.window()}.addToCart(u"ZZ  |  GONE"_s, 4, true);
    QCOMPARE(counter.cart(), QStringList{u"ZZ  |  GONE|4|0.00"_s});
}

void ProceduresTest::costThatDoesNotFit()
{
    Counter counter;
    openShop(counter);
    counter.file.sql(u"UPDATE StockList SET StockCost = 3e38"_s);
    InventoryProbe{counter.window()}.addToCart(key, 2, true);
    QCOMPARE(counter.cart(), QStringList{key + u"|2|0.00"_s});
}

void ProceduresTest::stockCoversARequest_data()
{
    QTest::addColumn<int>("inCart");
    QTest::addColumn<int>("request");
    QTest::addColumn<QString>("refusal");
    const QString only = u"There are only 5 item(s) in stock for A1  |  TEA"_s;
    QTest::newRow("all of it") << 0 << 5 << QString();
    QTest::newRow("more than there is") << 0 << 6 << only + u". Kindly reorder Stock!"_s;
    QTest::newRow("with the cart's") << 3 << 2 << QString();
    QTest::newRow("more, with the cart's") << 3 << 3 << only + u" and have already of 3 this item(s) in cart."_s;
}

void ProceduresTest::stockCoversARequest()
{
    QFETCH(int, inCart);
    QFETCH(int, request);
    QFETCH(QString, refusal);
    Counter counter;
    openShop(counter, 5);
    const InventoryProbe probe{counter.window()};
    if (inCart > 0)
        probe.addToCart(key, static_cast<std::int16_t>(inCart), true);
    if (!refusal.isEmpty())
        counter.boxes.expect(refusal, box::Information);
    QCOMPARE(probe.stockAvailable(key, static_cast<std::int16_t>(request)), refusal.isEmpty());
}

void ProceduresTest::plainBox()
{
    Counter counter;
    counter.file.sql(u"UPDATE StoreSettings SET ShowDetails = 1"_s);
    openShop(counter);
    const InventoryProbe probe{counter.window()};
    counter.boxes.expect(u"plain"_s, box::OkOnly);
    probe.logActivity(u"plain"_s, box::Information, true, false);
    counter.boxes.expect(u"styled"_s, box::Critical);
    probe.logActivity(u"styled"_s, box::Critical, false, false);
    probe.logActivity(u"quiet"_s, box::Critical, true, true);
    QVERIFY2(counter.boxes.isDone(), counter.boxes.problems().constData());
}

void ProceduresTest::emptyMessage()
{
    Counter counter;
    openShop(counter);
    counter.file.sql(u"DELETE FROM SysUsage"_s);
    InventoryProbe{counter.window()}.logActivity(QString(), box::Information, false, true);
    QVERIFY(counter.text("Text1").startsWith(u"[05.03.18 14:07:09] -- \n\n["_s));
    QCOMPARE(counter.file.rows(u"SELECT * FROM SysUsage"_s),
             QStringList{u"|2018-03-05 14:07:09|2018-03-05 14:07:09"_s});
}

void ProceduresTest::clockIsReadForEachColumn()
{
    /// Each call of now() is a second later than the one before.
    class TickingClock final : public Clock
    {
    public:
        [[nodiscard]] QDateTime now() const override { return QDateTime(QDate(2018, 3, 5), QTime(14, 7, m_second++)); }

    private:
        mutable int m_second = 0;
    };
    ShopFile file;
    const auto boxes = std::make_shared<QtBoxes>();
    InvBasic::setConnection(file.connect());
    Inventory window({boxes, std::make_shared<MemorySettings>(), std::make_shared<PaperPrinters>(),
                      std::make_shared<TickingClock>(), std::make_shared<ObjectRegistry>()});
    InventoryProbe{window}.logActivity(u"x"_s, box::Information, false, true);
    QCOMPARE(file.rows(u"SELECT Times, Dates FROM SysUsage"_s),
             QStringList{u"2018-03-05 14:07:01|2018-03-05 14:07:02"_s});
    InvBasic::setConnection(nullptr);
}

HARROWBY_TEST(procedures_test, ProceduresTest)
#include "procedures_test.moc"
