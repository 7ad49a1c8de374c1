// SPDX-License-Identifier: MIT
#include "app/demo/demo_catalogue.h"
#include "app/demo/demo_purchases.h"
#include "app/demo/demo_shop.h"
#include "app/shop/store_create.h"
#include "basic/dates.h"
#include "basic/item_key.h"
#include "basic/numbers.h"
#include "tests/app/store_files.h"
#include "tests/program/test_program.h"

#include <QRegularExpression>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;
using namespace harrowby::app::test;

class DemoTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void fileIsSound();
    void shelvesAreMixed();
    void everythingEnabledCanBeSold();
    void itemTextsAreStoredAsTheTillDoes();
    void usersAndTheirRights();
    void purchasesAreInTheTillsOwnForm();
    void purchasesReachFromWeeksAgoToToday_data();
    void purchasesReachFromWeeksAgoToToday();
    void sameMomentGivesTheSameShop();
    void storeSettingsAreOneRow();
    void loginTextNamesEveryUser();

private:
    [[nodiscard]] int number(const QString &select) const { return column(m_path, select).value(0).toInt(); }

    QTemporaryDir m_folder;
    QString m_path;
    const QDateTime m_now = QDateTime(QDate(2026, 3, 5), QTime(14, 7, 9));
};

void DemoTest::initTestCase()
{
    m_path = m_folder.filePath(u"demo.sqlite"_s);
    const auto problem = createStore(m_path, false, [this](sqlite3 *db) { return fillDemoShop(db, m_now); });
    QVERIFY2(!problem, problem ? qPrintable(problem->text) : "");
}

void DemoTest::fileIsSound()
{
    QCOMPARE(column(m_path, u"PRAGMA integrity_check"_s), QStringList{u"ok"_s});
}

void DemoTest::shelvesAreMixed()
{
    QCOMPARE(number(u"SELECT count(*) FROM InventoryCategory"_s), 8);
    QCOMPARE(number(u"SELECT count(*) FROM StockList"_s), 64);
    QCOMPARE(number(u"SELECT count(DISTINCT StockID) FROM StockList"_s), 64);
    QCOMPARE(number(u"SELECT count(DISTINCT StockName) FROM StockList"_s), 64);
    QCOMPARE(number(u"SELECT count(*) FROM StockList WHERE StockCategory NOT IN (SELECT CategoryName FROM "
                    "InventoryCategory)"_s),
             0);
    const QString sold = u"SELECT count(*) FROM StockList WHERE StockUse = 'Enabled' AND "_s;
    QVERIFY(number(sold + u"StockAvailable = 0"_s) >= 3);
    QVERIFY(number(sold + u"StockAvailable > 0 AND StockAvailable <= StockReorderLevel"_s) >= 3);
    QVERIFY(number(sold + u"StockAvailable > StockReorderLevel"_s) >= 40);
    QVERIFY(number(u"SELECT count(*) FROM StockList WHERE StockUse = 'Disabled'"_s) >= 3);
    QCOMPARE(number(u"SELECT count(*) FROM StockList WHERE StockUse NOT IN ('Enabled', 'Disabled')"_s), 0);
}

void DemoTest::everythingEnabledCanBeSold()
{
    // The till asks for the item by the name in upper case, and splits keys and purchases at these separators.
    for (const DemoItem &item : demoItems()) {
        QCOMPARE(item.name, item.name.toUpper());
        QCOMPARE(GetIDName(itemKey(item.id, item.name), KeyPiece::Id), item.id);
        QCOMPARE(GetIDName(itemKey(item.id, item.name), KeyPiece::Name), item.name);
        for (const QString &separator : {u", "_s, u" x "_s, u" = "_s, u"'"_s, u" | "_s})
            QVERIFY2(!item.name.contains(separator), qPrintable(item.name));
    }
}

void DemoTest::itemTextsAreStoredAsTheTillDoes()
{
    const QRegularExpression id(u"^[A-Z]{3}-\\d{4}$"_s);
    for (const QString &value : column(m_path, u"SELECT StockID FROM StockList"_s))
        QVERIFY2(id.match(value).hasMatch(), qPrintable(value));
    const QRegularExpression time(u"^\\d\\d-[A-Z][a-z]{2}-\\d\\d \\d\\d:\\d\\d:\\d\\d$"_s);
    for (const QString &value : column(m_path, u"SELECT StockLastUpdated FROM StockList"_s))
        QVERIFY2(time.match(value).hasMatch(), qPrintable(value));
    QCOMPARE(number(u"SELECT count(*) FROM StockList WHERE typeof(StockAvailable) <> 'integer' OR "
                    "typeof(StockReorderLevel) <> 'integer' OR typeof(StockCost) NOT IN ('integer', 'real')"_s),
             0);
}

void DemoTest::usersAndTheirRights()
{
    QCOMPARE(column(m_path, u"SELECT Username || ' ' || Type || ' ' || InventoryUse || InventorySales || "
                            "InventoryReport || InventoryUndo || InventoryDelete || InventorySettings || "
                            "InventoryReorder FROM Users"_s),
             (QStringList{u"ADMINISTRATOR ADMINISTRATOR -1-1-1-1-1-1-1"_s, u"MANAGER MANAGER -1-1-1-1-1-1-1"_s,
                          u"CASHIER CASHIER -1-100000"_s, u"VIEWER VIEWER -1000000"_s}));
}

void DemoTest::purchasesAreInTheTillsOwnForm()
{
    const QSet<QString> known = [] {
        QSet<QString> keys;
        for (const DemoItem &item : demoItems())
            keys.insert(itemKey(item.id, item.name));
        return keys;
    }();
    const QRegularExpression element(u"^(\\d+) x (.+) = ([\\d,]+\\.\\d\\d)$"_s);
    QSet<QString> ids;
    for (const DemoPurchase &purchase : demoPurchases(m_now)) {
        QVERIFY(!ids.contains(purchase.id));
        ids.insert(purchase.id);
        QCOMPARE(purchase.id, u"HV"_s + purchase.date + purchase.date.mid(8, 2));
        const QStringList elements = purchase.items.split(u", "_s);
        QCOMPARE(elements.size(), purchase.lines);
        double cost = 0;
        for (const QString &text : elements) {
            const QRegularExpressionMatch match = element.match(text);
            QVERIFY2(match.hasMatch(), qPrintable(text));
            QVERIFY2(known.contains(match.captured(2)), qPrintable(text));
            cost += leadingNumberWithoutCommas(match.captured(3));
        }
        QCOMPARE(qRound(cost * 100), purchase.cents);
    }
    QCOMPARE(number(u"SELECT count(*) FROM PurchaseCart"_s), ids.size());
    QCOMPARE(number(u"SELECT count(*) FROM PurchaseCart WHERE typeof(PurchasedItemsTotal) <> 'integer' OR "
                    "typeof(PurchasedItemsCost) NOT IN ('integer', 'real') OR typeof(PurchasedDate) <> 'text'"_s),
             0);
}

void DemoTest::purchasesReachFromWeeksAgoToToday_data()
{
    QTest::addColumn<QTime>("time");
    QTest::addColumn<int>("today");
    QTest::newRow("afternoon") << QTime(14, 7, 9) << 6;
    QTest::newRow("just open") << QTime(8, 0, 4) << 6;
    QTest::newRow("night") << QTime(0, 0, 3) << 3;
    QTest::newRow("midnight") << QTime(0, 0, 0) << 0;
    QTest::newRow("last second") << QTime(23, 59, 59) << 6;
}

void DemoTest::purchasesReachFromWeeksAgoToToday()
{
    QFETCH(QTime, time);
    QFETCH(int, today);
    const QDateTime now(m_now.date(), time);
    const QList<DemoPurchase> purchases = demoPurchases(now);
    const auto soldOn = [&](const QDate &day) {
        const QString key = dayKey(QDateTime(day, QTime(12, 0)));
        return std::count_if(purchases.begin(), purchases.end(),
                             [&](const DemoPurchase &purchase) { return purchase.date.startsWith(key); });
    };
    QCOMPARE(soldOn(now.date()), today);
    for (int ago = 1; ago <= 28; ++ago)
        QVERIFY(soldOn(now.date().addDays(-ago)) >= 3);
    for (const DemoPurchase &purchase : purchases)
        QVERIFY(purchase.date <= purchasedDate(now));
}

void DemoTest::sameMomentGivesTheSameShop()
{
    const QString again = m_folder.filePath(u"again.sqlite"_s);
    QVERIFY(!createStore(again, false, [this](sqlite3 *db) { return fillDemoShop(db, m_now); }));
    const QString everything = u"SELECT group_concat(PurchaseID || PurchasedItems || PurchasedItemsCost || Users) FROM "
                               "PurchaseCart"_s;
    QCOMPARE(column(again, everything), column(m_path, everything));
}

void DemoTest::storeSettingsAreOneRow()
{
    QCOMPARE(column(m_path, u"SELECT Email || ShowDetails || Promptreorder || AutoPurchaseCart FROM StoreSettings"_s),
             QStringList{u"0110"_s});
}

void DemoTest::loginTextNamesEveryUser()
{
    for (const QString &name : column(m_path, u"SELECT Username FROM Users"_s))
        QVERIFY(demoLoginText().contains(name));
    QCOMPARE(number(u"SELECT count(*) FROM Users WHERE Username = Password"_s), 4);
}

HARROWBY_CORE_TEST(app_demo_test, DemoTest)
#include "demo_test.moc"
