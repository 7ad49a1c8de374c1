// SPDX-License-Identifier: MIT
#include "sheet/table_view.h"

#include <QAbstractItemModelTester>
#include <QComboBox>
#include <QHeaderView>
#include <QTest>

using namespace harrowby::sheet;
using namespace Qt::StringLiterals;

namespace {

Table sellers()
{
    Table table;
    table.columns = {{u"Seller"_s, Kind::Text, true}, {u"Amount"_s, Kind::Money, false}};
    table.rows = {{u"B"_s, 9.0}, {u"A"_s, 10.0}, {u"C"_s, 100.0}};
    return table;
}

QString column(const TableView &view, int number)
{
    QStringList texts;
    for (int row = 0; row < view.model()->rowCount(); ++row)
        texts << view.model()->index(row, number).data().toString();
    return texts.join(u' ');
}

} // namespace

class TableViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void showsAndSorts()
    {
        TableView view;
        const QAbstractItemModelTester tester(view.model(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        view.show(sellers(), 1, Qt::DescendingOrder);
        QCOMPARE(column(view, 0), u"C A B"_s);
        QCOMPARE(column(view, 1), u"100.00 10.00 9.00"_s);
        view.sortByColumn(0, Qt::AscendingOrder);
        QCOMPARE(column(view, 0), u"A B C"_s);
        QCOMPARE(std::get<QString>(view.table().rows.front().front()), u"A"_s); // files have the order of the screen
        view.clear();
        QCOMPARE(view.model()->rowCount(), 0);
    }

    void theBoxSortsAndFollows()
    {
        TableView view;
        const std::unique_ptr<QComboBox> box(view.createSortBox(nullptr));
        view.show(sellers(), 1, Qt::DescendingOrder);
        QCOMPARE(box->count(), 4);
        QCOMPARE(box->currentText(), u"Amount, largest first"_s);
        box->setCurrentIndex(0);
        Q_EMIT box->activated(0);
        QCOMPARE(column(view, 0), u"A B C"_s);
        view.header()->setSortIndicator(0, Qt::DescendingOrder);
        QCOMPARE(box->currentText(), u"Seller, Z to A"_s);
    }

    void aChosenOrderStaysWithItsColumns()
    {
        TableView view;
        view.show(sellers(), 1, Qt::DescendingOrder);
        view.sortByColumn(0, Qt::AscendingOrder);
        view.show(sellers(), 1, Qt::DescendingOrder);
        QCOMPARE(column(view, 0), u"A B C"_s);
        Table other = sellers();
        other.columns.front().heading = u"Item"_s;
        view.show(other, 1, Qt::DescendingOrder);
        QCOMPARE(column(view, 0), u"C A B"_s);
    }

    void sortingAMarkedRowIsSafe()
    {
        TableView view;
        view.show(sellers(), 1, Qt::DescendingOrder);
        view.setCurrentIndex(view.model()->index(2, 0));
        view.sortByColumn(0, Qt::DescendingOrder);
        QCOMPARE(column(view, 0), u"C B A"_s);
    }

    void aNameIsNoMarkup()
    {
        TableView view;
        Table table = sellers();
        table.rows = {{u"<b>A</b>"_s, 1.0}};
        view.show(table, 0, Qt::AscendingOrder);
        const QModelIndex cell = view.model()->index(0, 0);
        QCOMPARE(cell.data().toString(), u"<b>A</b>"_s);
        QCOMPARE(cell.data(Qt::ToolTipRole).toString(), u"&lt;b&gt;A&lt;/b&gt;"_s);
    }
};

QTEST_MAIN(TableViewTest)
#include "table_view_test.moc"
