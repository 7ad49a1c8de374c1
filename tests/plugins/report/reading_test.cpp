// SPDX-License-Identifier: MIT
#include "plugins/report/sales_reading.h"
#include "plugins/report/sales_statements.h"
#include "tests/plugins/report/shop.h"
#include "tests/program/test_program.h"

#include <QTest>

#include <sqlite3.h>

#include <stdexcept>

using namespace harrowby;
using namespace harrowby::report;
using namespace harrowby::report::test;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

Q_DECLARE_METATYPE(harrowby::report::Grouping)

namespace {

using State = SalesReading::State;

const Period november{QDate(2026, 11, 1), QDate(2026, 11, 30)};

State readAll(SalesReading &reading)
{
    State state = State::Reading;
    for (int step = 0; state == State::Reading && step < 1'000'000; ++step)
        state = reading.step(0ms);
    return state;
}

QString sumsText(const std::map<QString, Sums> &all)
{
    QStringList parts;
    for (const auto &[key, sums] : all)
        parts << u"%1:%2:%3"_s.arg(key).arg(sums.purchases).arg(sums.amount);
    return parts.join(u' ');
}

QString itemsText(const Sales &sales)
{
    QStringList parts;
    for (const auto &[key, sums] : sales.byItem.entries())
        parts << u"%1:%2:%3:%4"_s.arg(key).arg(sums.purchases).arg(sums.quantity).arg(sums.amount);
    parts.sort();
    return parts.join(u' ');
}

} // namespace

class ReadingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sumsDaysAndSellers()
    {
        const Shop shop;
        shop.sell(u"261101090000"_s, u"ANN"_s, 1.5);
        shop.sell(u"261101100000"_s, u"BOB"_s, 2);
        shop.sell(u"261130235959"_s, u"ANN"_s, 4);
        shop.sell(u"261031235959"_s, u"ANN"_s, 100);
        shop.sell(u"261201000000"_s, u"ANN"_s, 100);
        SalesReading reading(shop.connection(), {november, Grouping::Day, {}});
        QCOMPARE(readAll(reading), State::Done);
        QCOMPARE(reading.progress(), 1.0);
        QCOMPARE(reading.sales().total.purchases, 3);
        QCOMPARE(reading.sales().total.amount, 7.5);
        QCOMPARE(sumsText(reading.sales().byDay), u"261101:2:3.5 261130:1:4"_s);
        QCOMPARE(sumsText(reading.sales().bySeller), u"ANN:2:5.5 BOB:1:2"_s);
    }

    void onlyOneSeller_data()
    {
        QTest::addColumn<Grouping>("grouping");
        QTest::newRow("day") << Grouping::Day;
        QTest::newRow("seller") << Grouping::Seller;
        QTest::newRow("item") << Grouping::Item;
    }

    void onlyOneSeller()
    {
        QFETCH(const Grouping, grouping);
        const Shop shop;
        shop.sell(u"261101090000"_s, u"O'HARA"_s, 1.5, u"1 x A = 1.50"_s);
        shop.sell(u"261101100000"_s, u"BOB"_s, 2, u"1 x B = 2.00"_s);
        shop.sell(u"261101100000"_s, u"o'hara"_s, 4, u"1 x C = 4.00"_s);
        SalesReading reading(shop.connection(), {november, grouping, u"O'HARA"_s});
        QCOMPARE(readAll(reading), State::Done);
        QCOMPARE(sumsText(reading.sales().bySeller), u"O'HARA:1:1.5"_s);
        QCOMPARE(itemsText(reading.sales()), grouping == Grouping::Item ? u"A:1:1:1.5"_s : QString());
    }

    void sumsItems()
    {
        const Shop shop;
        shop.sell(u"261101090000"_s, u"ANN"_s, 7.5, u"2 x A  |  PEN = 3.00, 1 x B  |  INK = 4.50"_s);
        shop.sell(u"261102090000"_s, u"BOB"_s, 1.5, u"1 x A  |  PEN = 1.50"_s);
        SalesReading reading(shop.connection(), {november, Grouping::Item, {}});
        QCOMPARE(readAll(reading), State::Done);
        QCOMPARE(itemsText(reading.sales()), u"A  |  PEN:2:3:4.5 B  |  INK:1:1:4.5"_s);
        QCOMPARE(reading.sales().unreadable.purchases, 0);
        QCOMPARE(reading.sales().total.purchases, 2);
    }

    void malformedRowsKeepTheirAmounts_data()
    {
        QTest::addColumn<QString>("values");
        QTest::addColumn<QString>("days");
        QTest::addColumn<QString>("items");
        QTest::addColumn<QString>("unreadable");
        QTest::newRow("items that are none")
            << u"'HV', 'rubbish', 1, 9.5, '261105', 'ANN'"_s << u"261105:1:9.5"_s << QString() << u"1:9.5"_s;
        QTest::newRow("items half readable") << u"'HV', '1 x A = 2, rubbish', 1, 9.5, '261105', 'ANN'"_s
                                             << u"261105:1:9.5"_s << u"A:1:1:2"_s << u"1:7.5"_s;
        QTest::newRow("no items") << u"'HV', NULL, 1, 3, '261105', 'ANN'"_s << u"261105:1:3"_s << QString() << u"1:3"_s;
        QTest::newRow("bytes for items") << u"'HV', x'ff00fe', 1, 3, '261105', 'ANN'"_s << u"261105:1:3"_s << QString()
                                         << u"1:3"_s;
        QTest::newRow("a text for the amount")
            << u"'HV', '1 x A = 2', 1, 'lots', '261105', 'ANN'"_s << u"261105:1:0"_s << u"A:1:1:2"_s << u"0:0"_s;
        QTest::newRow("a text with a figure")
            << u"'HV', '1 x A = 2', 1, '12 or so', '261105', 'ANN'"_s << u"261105:1:12"_s << u"A:1:1:2"_s << u"0:0"_s;
        QTest::newRow("no amount") << u"'HV', '1 x A = 2', NULL, NULL, '261105', 'ANN'"_s << u"261105:1:0"_s
                                   << u"A:1:1:2"_s << u"0:0"_s;
        QTest::newRow("too much") << u"'HV', 'rubbish', 1, 9e999, '261105', 'ANN'"_s << u"261105:1:0"_s << QString()
                                  << u"1:0"_s;
        QTest::newRow("a day that is none")
            << u"'HV', '1 x A = 2', 1, 2, '26110x', 'ANN'"_s << u"26110x:1:2"_s << u"A:1:1:2"_s << u"0:0"_s;
        QTest::newRow("a date of six") << u"'HV', '1 x A = 2', 1, 2, 261105, NULL"_s << u"261105:1:2"_s << u"A:1:1:2"_s
                                       << u"0:0"_s;
        QTest::newRow("no date") << u"'HV', '1 x A = 2', 1, 2, NULL, 'ANN'"_s << QString() << QString() << u"0:0"_s;
    }

    void malformedRowsKeepTheirAmounts()
    {
        QFETCH(const QString, values);
        const Shop shop;
        QVERIFY(shop.run(u"INSERT INTO PurchaseCart VALUES (%1)"_s.arg(values)));
        SalesReading reading(shop.connection(), {november, Grouping::Item, {}});
        QCOMPARE(readAll(reading), State::Done);
        const Sales &sales = reading.sales();
        QTEST(sumsText(sales.byDay), "days");
        QTEST(itemsText(sales), "items");
        QTEST(u"%1:%2"_s.arg(sales.unreadable.purchases).arg(sales.unreadable.amount), "unreadable");
    }

    void failuresEndTheReading_data()
    {
        QTest::addColumn<QString>("statement");
        QTest::addColumn<bool>("throws");
        QTest::newRow("probe") << u"LIMIT"_s << false;
        QTest::newRow("sums") << u"GROUP BY"_s << false;
        QTest::newRow("items") << u"SELECT PurchasedItems,"_s << false;
        QTest::newRow("an exception") << u"GROUP BY"_s << true;
    }

    void failuresEndTheReading()
    {
        QFETCH(const QString, statement);
        QFETCH(const bool, throws);
        const Shop shop;
        shop.sell(u"261101090000"_s, u"ANN"_s, 1.5);
        shop.connection()->fails = [=](const QString &text) {
            if (throws && text.contains(statement))
                throw std::runtime_error("gone");
            return text.contains(statement);
        };
        SalesReading reading(shop.connection(), {november, Grouping::Item, {}});
        QCOMPARE(readAll(reading), State::Failed);
        QCOMPARE(reading.step(1ms), State::Failed);
    }

    void aLostTableAndNoConnectionFail()
    {
        const Shop shop;
        QVERIFY(shop.run(u"DROP TABLE PurchaseCart"_s));
        SalesReading lost(shop.connection(), {november, Grouping::Day, {}});
        QCOMPARE(readAll(lost), State::Failed);
        SalesReading none(nullptr, {november, Grouping::Day, {}});
        QCOMPARE(readAll(none), State::Failed);
    }

    void manyAreReadInSlices()
    {
        const Shop shop;
        shop.sellMany(200'000, 1'000, QDate(2026, 1, 1));
        shop.sell(u"260101090000"_s, u"ANN"_s, 0.5);
        SalesReading reading(shop.connection(), {{QDate(2026, 1, 1), QDate(2026, 12, 31)}, Grouping::Seller, {}});
        QCOMPARE(readAll(reading), State::Done);
        QCOMPARE(reading.sales().total.purchases, 200'001);
        QCOMPARE(reading.sales().total.amount, 300'000.5);
        QCOMPARE(reading.sales().byDay.size(), static_cast<std::size_t>(200));
        QCOMPARE(reading.sales().bySeller.at(u"S3"_s).purchases, 40'000);
        QVERIFY(shop.connection()->statements.filter(u"GROUP BY"_s).size() >= 4); // none of them sums all
    }

    void aBigDayIsReadRowByRow()
    {
        const Shop shop;
        shop.sellMany(DaySlices::mostPurchases + 500, 1'000'000, QDate(2026, 11, 5));
        shop.sell(u"261106090000"_s, u"ANN"_s, 0.5);
        SalesReading reading(shop.connection(), {november, Grouping::Day, {}});
        int steps = 0;
        while (reading.step(0ms) == State::Reading)
            ++steps;
        QVERIFY(steps > 400);
        QCOMPARE(reading.sales().total.purchases, DaySlices::mostPurchases + 501);
        QCOMPARE(reading.sales().byDay.at(u"261105"_s).amount, (DaySlices::mostPurchases + 500) * 1.5);
        QCOMPARE(reading.sales().byDay.at(u"261106"_s).amount, 0.5);
    }

    void itemsOfManyAreReadBitByBit()
    {
        const Shop shop;
        shop.sellMany(20'000, 1'000, QDate(2026, 11, 1));
        SalesReading reading(shop.connection(), {november, Grouping::Item, {}});
        double progress = 0.0;
        int steps = 0;
        while (reading.step(0ms) == State::Reading) {
            QVERIFY(reading.progress() >= progress && reading.progress() <= 1.0);
            progress = reading.progress();
            ++steps;
        }
        QVERIFY(steps > 100);
        QCOMPARE(reading.progress(), 1.0);
        QCOMPARE(reading.sales().byItem.entries().size(), static_cast<std::size_t>(50));
        QVERIFY(itemsText(reading.sales()).contains(u" ART-7  |  ARTICLE 7:400:400:600 "_s));
    }

    void aReadingMayBeDroppedAtAnyTime()
    {
        const Shop shop;
        shop.sellMany(5'000, 100, QDate(2026, 11, 1));
        for (int steps = 0; steps < 30; ++steps) {
            SalesReading reading(shop.connection(), {november, Grouping::Item, {}});
            for (int step = 0; step < steps; ++step)
                reading.step(0ms);
        }
        QVERIFY(sqlite3_next_stmt(shop.handle(), nullptr) == nullptr);
    }

    void theIndexIsUsed_data()
    {
        QTest::addColumn<QString>("statement");
        QTest::addColumn<QString>("plan");
        const std::optional<QString> ann = u"ANN"_s;
        const QString covering = u"USING COVERING INDEX harrowby_purchase_day"_s;
        QTest::newRow("probe") << probeStatement(november, {}, 9) << covering;
        QTest::newRow("sums") << sumsStatement(november, {}) << covering;
        QTest::newRow("sums of one") << sumsStatement(november, ann) << covering;
        QTest::newRow("rows") << rowsStatement(november, ann) << covering;
        QTest::newRow("items") << itemsStatement(november, {}) << u"USING INDEX harrowby_purchase_day"_s;
    }

    void theIndexIsUsed()
    {
        QFETCH(const QString, statement);
        QFETCH(const QString, plan);
        const Shop shop;
        sqlite3_stmt *explained = nullptr;
        sqlite3_prepare_v2(shop.handle(), ("EXPLAIN QUERY PLAN " + statement.toUtf8()).constData(), -1, &explained,
                           nullptr);
        QString steps;
        while (sqlite3_step(explained) == SQLITE_ROW)
            steps += QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(explained, 3))) + u';';
        sqlite3_finalize(explained);
        QVERIFY2(steps.contains(plan), qPrintable(steps));
        QVERIFY2(!steps.contains(u"TEMP B-TREE"_s), qPrintable(steps));
    }
};

HARROWBY_CORE_TEST(report_reading_test, ReadingTest)
#include "reading_test.moc"
