// SPDX-License-Identifier: MIT
#include "tables/table_view.h"

#include "tests/program/test_program.h"
#include "theme/dialogs.h"

#include <QAbstractItemModelTester>
#include <QComboBox>
#include <QDialog>
#include <QHeaderView>
#include <QScreen>
#include <QTest>

using namespace harrowby::tables;
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

    void theBoxDropsItsWholeList_data()
    {
        QTest::addColumn<int>("columns");
        QTest::addColumn<bool>("fits");
        QTest::newRow("short") << 6 << true; // twelve entries, on a screen of 800x600
        QTest::newRow("longer than the screen") << 20 << false;
    }

    void theBoxDropsItsWholeList()
    {
        QFETCH(const int, columns);
        QFETCH(const bool, fits);
        Table table;
        for (int i = 0; i < columns; ++i)
            table.columns.push_back({u"Column %1"_s.arg(i), Kind::Text, false});
        QDialog dialog;
        TableView view(&dialog);
        QComboBox *box = view.createSortBox(&dialog);
        view.show(table, 0, Qt::AscendingOrder);
        harrowby::dressDialog(dialog);
        dialog.setGeometry(0, 0, 300, 200);
        dialog.show();
        box->setCurrentIndex(box->count() - 1);
        box->showPopup();
        QAbstractItemView *list = box->view();
        QTRY_VERIFY(list->isVisible());
        QVERIFY(list->screen()->geometry().contains(list->window()->geometry()));
        const QPoint middle = box->mapToGlobal(box->rect().center());
        QVERIFY(!list->window()->geometry().contains(middle)); // what is chosen now stays to be seen
        const auto entry = [&](int row) { return list->visualRect(list->model()->index(row, 0)); };
        for (int row = 0; row < box->count(); ++row)
            QVERIFY(entry(row).height() >= 44);
        QVERIFY(list->viewport()->rect().contains(entry(box->count() - 1)));
        QCOMPARE(list->viewport()->rect().contains(entry(0)), fits);
        list->scrollToTop();
        QVERIFY(list->viewport()->rect().contains(entry(0)));
        box->hidePopup();
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

    void aNameHasRoomInANarrowView()
    {
        Table table;
        table.columns = {{u"Item code"_s, Kind::Text, false},  {u"Item"_s, Kind::Text, true},
                         {u"Category"_s, Kind::Text, false},   {u"Level"_s, Kind::Count, false},
                         {u"Available"_s, Kind::Count, false}, {u"Missing"_s, Kind::Count, false}};
        table.rows = {{u"SNA-0007"_s, u"BREAKFAST TEA 80 BAGS"_s, u"STATIONERY"_s, 15.0, 11.0, 4.0}};
        QDialog dialog;
        TableView view(&dialog);
        const QComboBox *box = view.createSortBox(&dialog);
        harrowby::dressDialog(dialog);
        dialog.resize(1400, 400);
        view.resize(1300, 400);
        dialog.show();
        view.show(table, 5, Qt::DescendingOrder);
        const auto need = [&](int column) { return view.visualRect(view.model()->index(0, column)).width(); };
        const int usual = need(2);
        view.resize(740, 400); // as on a screen of 800 or 768
        const QString name = view.model()->index(0, 1).data().toString();
        QVERIFY2(need(1) >= view.fontMetrics().horizontalAdvance(name) + 12, qPrintable(QString::number(need(1))));
        for (int column = 0; column < view.model()->columnCount(); ++column) {
            const QString text = view.model()->index(0, column).data().toString();
            QVERIFY2(need(column) >= view.fontMetrics().horizontalAdvance(text) + 12, qPrintable(text));
            const QString heading = view.model()->headerData(column, Qt::Horizontal).toString();
            const QFontMetrics letters(view.header()->font());
            QVERIFY2(need(column) >= letters.horizontalAdvance(heading) + 24, qPrintable(heading));
        }
        for (int entry = 0; entry < box->count(); ++entry) {
            const QString text = box->itemText(entry);
            const int arrowAndPadding = 56;
            QVERIFY2(box->sizeHint().width() >= box->fontMetrics().horizontalAdvance(text) + arrowAndPadding,
                     qPrintable(text));
        }
        view.resize(1300, 400);
        QCOMPARE(need(2), usual);
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

HARROWBY_TEST(tables_table_view_test, TableViewTest)
#include "table_view_test.moc"
