// SPDX-License-Identifier: MIT
#include "app/activity/activity_kinds.h"
#include "app/codes/code_finder.h"
#include "tests/app/desk_till.h"
#include "tests/program/test_program.h"
#include "ui/widgets/row_list.h"

#include <harrowby/counter.h>

#include <QListWidget>
#include <QMap>
#include <QRegularExpression>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;

/// What the till writes down of who did what, at the real window.
class TillDeedsTest : public app::test::DeskTill
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void priceByHandIsTold();
    void priceByHandOfNoPurchaseIsNotTold();
    void priceOfACodeIsNotByHand();
    void priceByHandOnTopOfACodeIsTold();
    void purchasesTakenBackAreTold();
    void deletedItemIsTold();
    void refusedLoginIsTold();
    void unknownNameIsNotKept();
    void saleGoesOnWithoutItsDeed();
    void everyLineOfTheTillsLogIsKnown();

private:
    void setPrice(const QString &key, const QString &before, const QString &price)
    {
        m_counter->boxes.expectInput(u"Enter new price for item [%1]?"_s.arg(key), {}, before, price);
        Q_EMIT m_counter->find<RowList>("LV3")->rowOpened(0);
        QCoreApplication::sendPostedEvents();
    }
    void scan(const QString &code)
    {
        Q_EMIT harrowby::Counter::instance().codeRead(code);
        QCoreApplication::sendPostedEvents();
    }
    void sellAndUndo();
    void keepStock();
    void keepCategoriesAndSettings();
    /// Each as KIND|WHO|PLACE|WHAT.
    [[nodiscard]] QStringList deeds() const
    {
        QStringList all;
        const auto rows = m_records->read(
            kept::activity(), {u"select Kind, Who, Place, What from HarrowbyActivity order by rowid"_s, {}});
        for (const RecordRow &row : rows.value_or(QList<RecordRow>()))
            all << recordText(row.at(0)) + u'|' + recordText(row.at(1)) + u'|' + recordText(row.at(2)) + u'|' +
                       withoutId(recordText(row.at(3)));
        return all;
    }

    QStringList m_failures;
};

void TillDeedsTest::init()
{
    m_failures.clear();
    makeShop();
    m_counter->file.addItem(u"12345"_s, u"CHEESE"_s, 9.99, 9);
    m_records->setFailureHandler([this](const DbFailure &failure) { m_failures << failure.statement; });
    QVERIFY(!ShopSettings(*m_records).save(inStoreSetting(u"21"_s), u"21IIIIIPPPPPC 2"_s));
    makeTill();
    openWindow();
}

void TillDeedsTest::cleanup()
{
    m_till.reset();
    m_records.reset();
    m_counter.reset();
}

void TillDeedsTest::priceByHandIsTold()
{
    scan(u"A1"_s);
    scan(u"A1"_s);
    setPrice(u"A1  |  TEA"_s, u"5.00"_s, u"3"_s);
    QCOMPARE(deeds(), QStringList());
    click("Command14");
    QCOMPARE(deeds(), QStringList{u"PriceByHand|ADMINISTRATOR|till DESK 1|"
                                  "2 x TEA (A1) sold for 3.00 instead of 5.00, purchase ID"_s});
}

void TillDeedsTest::priceByHandOfNoPurchaseIsNotTold()
{
    scan(u"A1"_s);
    setPrice(u"A1  |  TEA"_s, u"2.50"_s, u"2.5"_s); // what it costs anyway
    click("Command14");
    QVERIFY(m_id != u"no purchase yet"_s);
    QCOMPARE(deeds(), QStringList());
}

void TillDeedsTest::priceOfACodeIsNotByHand()
{
    scan(u"2112345019994"_s);
    scan(u"2112345019994"_s);
    QCOMPARE(m_counter->cart().value(0).section(u'|', -2), u"2|39.98"_s);
    click("Command14");
    QVERIFY(m_id != u"no purchase yet"_s);
    QCOMPARE(deeds(), QStringList());
    // What one cart's codes said is nothing to the next.
    scan(u"12345"_s);
    setPrice(u"12345  |  CHEESE"_s, u"9.99"_s, u"19.99"_s);
    click("Command14");
    QCOMPARE(deeds().value(0).section(u'|', -1), u"1 x CHEESE (12345) sold for 19.99 instead of 9.99, purchase ID"_s);
}

void TillDeedsTest::priceByHandOnTopOfACodeIsTold()
{
    scan(u"2112345019994"_s);
    setPrice(u"12345  |  CHEESE"_s, u"19.99"_s, u"1"_s);
    click("Command14");
    QCOMPARE(deeds().value(0).section(u'|', -1), u"1 x CHEESE (12345) sold for 1.00 instead of 19.99, purchase ID"_s);
}

void TillDeedsTest::purchasesTakenBackAreTold()
{
    scan(u"A1"_s);
    click("Command14");
    click("Command25");
    QCOMPARE(deeds(), QStringList{u"PurchaseUndone|ADMINISTRATOR|till DESK 1|The last purchase, ID, was undone."_s});
    click("Command14");
    m_counter->setText("Combo17", m_id);
    click("Command4");
    QCOMPARE(deeds().value(1), u"PurchaseDeleted|ADMINISTRATOR|till DESK 1|The purchase ID was deleted."_s);
}

void TillDeedsTest::deletedItemIsTold()
{
    m_counter->chooseTab("TabStrip1", WorkArea::EditStock);
    QCoreApplication::sendPostedEvents();
    const QStringList rows = m_counter->rows("LV");
    const auto tea = rows.indexOf(QRegularExpression(u".*TEA.*"_s));
    QVERIFY(tea >= 0);
    m_counter->find<RowList>("LV")->selectRow(static_cast<int>(tea));
    click("Command6");
    QCOMPARE(deeds(), QStringList{u"ItemDeleted|ADMINISTRATOR|till DESK 1|The item with the ID A1 was deleted."_s});
}

void TillDeedsTest::refusedLoginIsTold()
{
    m_counter->logIn(u"administrator"_s, u"wrong"_s);
    QCoreApplication::sendPostedEvents();
    QCOMPARE(deeds(),
             QStringList{u"LoginRefused|ADMINISTRATOR|till DESK 1|The till refused to log in ADMINISTRATOR."_s});
}

void TillDeedsTest::unknownNameIsNotKept()
{
    m_counter->logIn(u"my secret"_s, u"wrong"_s);
    m_counter->logIn(QString(), u"wrong"_s); // nobody
    QCoreApplication::sendPostedEvents();
    QCOMPARE(deeds(), QStringList{u"LoginRefused||till DESK 1|"
                                  "The till refused to log in somebody whose name the store does not have."_s});
}

void TillDeedsTest::saleGoesOnWithoutItsDeed()
{
    m_counter->file.sql(u"create table HarrowbyActivity (Other text)"_s); // nothing can be added to this one
    scan(u"A1"_s);
    setPrice(u"A1  |  TEA"_s, u"2.50"_s, u"1"_s);
    click("Command14");
    QCOMPARE(m_counter->cart(), QStringList());
    QVERIFY(m_id != u"no purchase yet"_s);
    QCOMPARE(m_failures.size(), 1);
    QVERIFY(m_failures.constFirst().startsWith(u"insert into HarrowbyActivity"_s));
}

void TillDeedsTest::sellAndUndo()
{
    scan(u"A1"_s);
    scan(u"A1"_s);
    setPrice(u"A1  |  TEA"_s, u"5.00"_s, u"3"_s);
    click("Command12");
    click("Command1_0");
    click("Command14");
    click("Command25");
    click("Command14");
}

void TillDeedsTest::keepStock()
{
    m_counter->chooseTab("TabStrip1", WorkArea::EditStock);
    for (int time = 0; time < 2; ++time) {
        for (const auto &[entry, text] : {std::pair("Combo5", u"DRINKS"_s),
                                          {"Combo6", u"N1"_s},
                                          {"Combo7", u"NEW TEA"_s},
                                          {"Combo8", u"4.00"_s},
                                          {"Combo13", u"1"_s},
                                          {"Combo14", u"9"_s},
                                          {"Combo15", u"Enabled"_s}})
            m_counter->setText(entry, text);
        click("Command16");
    }
    click("Command7");
    m_counter->find<RowList>("LV")->selectRow(0);
    click("Command6");
    m_counter->chooseTab("TabStrip1", WorkArea::ReorderStock);
    m_counter->setText("Combo11", u"N1  |  NEW TEA"_s);
    m_counter->setText("Combo10", u"5"_s);
    click("Command17");
    click("Command23");
}

void TillDeedsTest::keepCategoriesAndSettings()
{
    m_counter->chooseTab("TabStrip1", WorkArea::Settings);
    m_counter->setText("Combo16", u"SWEETS"_s);
    click("Command2");
    auto *list = m_counter->find<QListWidget>("List2");
    list->setCurrentRow(list->count() - 1);
    m_counter->boxes.expectInput(u"Change Category[SWEETS] to what new name?"_s,
                                 u"Change Category - "_s + m_counter->state().MsgTitle, {}, u"CANDY"_s);
    click("Command22");
    list->setCurrentRow(list->count() - 1);
    click("Command3");
    click("Command18");
    click("Command11");
    click("Command27");
}

/// The real texts, as the window writes them.
void TillDeedsTest::everyLineOfTheTillsLogIsKnown()
{
    sellAndUndo();
    keepStock();
    keepCategoriesAndSettings();
    QMap<ActivityKind, int> kinds;
    const auto rows = m_records->read({u"select SystemUsage from SysUsage"_s, {}}).value_or(QList<RecordRow>());
    for (const RecordRow &row : rows) {
        const QString text = recordText(row.constFirst());
        const LogMeaning meaning = meaningOfLog(text);
        QVERIFY2(meaning.kind != ActivityKind::Other, qPrintable(text));
        QCOMPARE(meaning.who, meaning.kind == ActivityKind::Login ? u"ADMINISTRATOR"_s : QString());
        ++kinds[meaning.kind];
    }
    QCOMPARE(kinds.value(ActivityKind::Login), 2);
    QCOMPARE(kinds.value(ActivityKind::Sale), 2);
    QCOMPARE(kinds.value(ActivityKind::PriceByHand), 1);
    QCOMPARE(kinds.value(ActivityKind::Deletion), 3); // a purchase undone, an item, a category
    QCOMPARE(kinds.value(ActivityKind::Settings), 2);
    QCOMPARE(kinds.value(ActivityKind::Stock), 7);
    QVERIFY(kinds.value(ActivityKind::Cart) >= 5);
}

HARROWBY_TEST(app_till_deeds_test, TillDeedsTest)
#include "till_deeds_test.moc"
