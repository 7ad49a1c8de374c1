// SPDX-License-Identifier: MIT
#include "tests/ui/stock_form.h"

#include "ui/widgets/row_list.h"
#include "ui/widgets/text_table_model.h"

using namespace Qt::StringLiterals;

namespace harrowby::test {

const QStringList fields{u"Combo6"_s, u"Combo5"_s, u"Combo7"_s, u"Combo8"_s, u"Combo13"_s, u"Combo14"_s, u"Combo15"_s};

const QStringList bun{u"(Auto ID)"_s, u"OTHER CATEGORY"_s, u"BUN"_s, u"1.5"_s, u"3"_s, u"20"_s, u"Enabled"_s};

void enter(const Counter &counter, const QStringList &texts)
{
    for (qsizetype i = 0; i < fields.size(); ++i)
        counter.setText(fields.at(i).toLatin1(), texts.at(i));
}

void openStock(Counter &counter)
{
    counter.file.sql(u"PRAGMA synchronous = OFF"_s);
    counter.open();
    counter.logIn();
    counter.chooseTab("TabStrip1", WorkArea::EditStock);
    counter.connection->statements.clear();
}

void save(const Counter &counter)
{
    counter.click("Command16");
}

QStringList storedIds(const Counter &counter)
{
    return counter.file.rows(u"SELECT StockID FROM StockList ORDER BY rowid"_s);
}

QStringList listed(const Counter &counter)
{
    const TextTableModel &rows = counter.find<RowList>("LV")->rows();
    QStringList all;
    for (int row = 0; row < rows.rowCount(); ++row)
        all << rows.text(row, 0) + u'|' + rows.text(row, 1);
    return all;
}

} // namespace harrowby::test
