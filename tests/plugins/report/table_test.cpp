// SPDX-License-Identifier: MIT
#include "plugins/report/sales_table.h"
#include "tables/csv.h"

#include "tests/program/test_program.h"

#include <QTest>

using namespace harrowby::report;
using namespace harrowby;
using namespace Qt::StringLiterals;

namespace {

SalesQuery query(Grouping grouping)
{
    return {{QDate(2026, 11, 1), QDate(2026, 11, 30)}, grouping, {}};
}

QString lines(tables::Table table, Grouping grouping)
{
    tables::sortRows(table.rows, firstOrder(grouping).column, firstOrder(grouping).order);
    table.rows.push_back(table.totals);
    return QString::fromUtf8(tables::toCsv(table)).trimmed();
}

} // namespace

class SalesTableTest : public QObject
{
    Q_OBJECT

private:
    Sales m_sales;

private Q_SLOTS:
    void init()
    {
        m_sales = {};
        m_sales.total = {4, 20.0};
        m_sales.byDay = {{u"261102"_s, {1, 5.0}}, {u"261101"_s, {2, 8.0}}, {u"26110x"_s, {1, 7.0}}};
        m_sales.bySeller = {{u"ANN"_s, {1, 5.0}}, {u" "_s, {1, 7.0}}, {u"BOB"_s, {2, 8.0}}};
        m_sales.byItem.add(u"A  |  PEN", 1.0, 1.5);
        m_sales.byItem.add(u"=NO BAR", 1.0, 8.5);
        m_sales.byItem.add(u"A  |  PEN", 2.0, 3.0);
        m_sales.byItem.settle();
        m_sales.unreadable = {1, 7.0};
    }

    void byDay()
    {
        QCOMPARE(lines(salesTable(m_sales, query(Grouping::Day)), Grouping::Day),
                 u"Day,Purchases,Amount,Average\r\n2026-11-01,2,8.00,4.00\r\n2026-11-02,1,5.00,5.00\r\n"
                 "(unreadable),1,7.00,7.00\r\nTotal,4,20.00,5.00"_s);
    }

    void bySeller()
    {
        QCOMPARE(lines(salesTable(m_sales, query(Grouping::Seller)), Grouping::Seller),
                 u"Seller,Purchases,Amount,Average\r\nBOB,2,8.00,4.00\r\n(nobody),1,7.00,7.00\r\nANN,1,5.00,5.00\r\n"
                 "Total,4,20.00,5.00"_s);
    }

    void byItem()
    {
        QCOMPARE(lines(salesTable(m_sales, query(Grouping::Item)), Grouping::Item),
                 u"Item code,Item,Quantity,Amount,Times sold\r\n,'=NO BAR,1,8.50,1\r\n,(unreadable),,7.00,1\r\n"
                 "A,PEN,3,4.50,2\r\n,Total,4,20.00,"_s);
    }

    void saysWhatItIs()
    {
        SalesQuery own = query(Grouping::Seller);
        own.onlySeller = u"ANN"_s;
        const tables::Table table = salesTable(m_sales, own);
        QCOMPARE(table.title, u"Sales Report"_s);
        QCOMPARE(table.notes, (QStringList{u"1 Nov 2026 to 30 Nov 2026, by seller"_s, u"Only the sales of ANN"_s}));
        QCOMPARE(fileWords(own), u"Sales 2026-11-01 to 2026-11-30 by seller"_s);
        QCOMPARE(fileWords({{QDate(2026, 11, 1), QDate(2026, 11, 1)}, Grouping::Day, {}}),
                 u"Sales 2026-11-01 by day"_s);
    }

    void nothingSoldIsNoRow()
    {
        for (const Grouping grouping : {Grouping::Day, Grouping::Seller, Grouping::Item})
            QVERIFY(salesTable({}, query(grouping)).rows.empty());
    }
};

HARROWBY_CORE_TEST(report_table_test, SalesTableTest)
#include "table_test.moc"
