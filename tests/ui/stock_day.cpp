// SPDX-License-Identifier: MIT
#include "tests/ui/stock_day.h"

#include "ui/widgets/pick_list.h"
#include "ui/widgets/row_list.h"
#include "ui/widgets/text_table_model.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::test {

void addStock(const Counter &counter, int count)
{
    counter.file.sql(u"PRAGMA synchronous = OFF; "
                     "WITH RECURSIVE n(i) AS (SELECT 0 UNION ALL SELECT i + 1 FROM n WHERE i < %1 - 1) "
                     "INSERT INTO StockList SELECT 'ID-' || i, 'Item ' || i, 'FOOD', 1.5, 1 + (i & 1), 2, 'Enabled', "
                     "'', '', '', '' FROM n"_s.arg(count));
}

RowList &stockList(const Counter &counter)
{
    return *counter.find<RowList>("LV");
}

TextTableModel &stockRows(const Counter &counter)
{
    return stockList(counter).rows();
}

QStringList listedIds(const Counter &counter)
{
    QStringList all;
    for (int row = 0; row < stockRows(counter).rowCount(); ++row)
        all << stockRows(counter).text(row, 0);
    return all;
}

QStringList storedUpperIds(const Counter &counter)
{
    return counter.file.rows(u"SELECT upper(StockID) FROM StockList ORDER BY rowid"_s);
}

int offeredNames(const Counter &counter)
{
    return counter.find<PickList>("Combo7")->count();
}

void openStock(Counter &counter, int tab)
{
    addStock(counter);
    counter.open();
    counter.logIn();
    if (tab > 0)
        counter.chooseTab("TabStrip1", tab);
    counter.connection->statements.clear();
}

void clickStockRow(const Counter &counter, int row)
{
    stockList(counter).scrollTo(stockRows(counter).index(row, 0));
    const QPoint place = stockList(counter).visualRect(stockRows(counter).index(row, 0)).center();
    QTest::mouseClick(stockList(counter).viewport(), Qt::LeftButton, {}, place);
}

MidFill::MidFill(Counter &counter, std::function<void()> action) :
    m_interruption(1, [this, action = std::move(action), &counter] {
        m_rows = stockRows(counter).rowCount();
        action();
    })
{
    m_interruption.watchRows(stockRows(counter));
    counter.connection->before = [](const QString &statement) {
        if (statement == u"Select * from StockList"_s)
            passRest(); // the first row lets the window breathe
    };
}

} // namespace harrowby::test
