// SPDX-License-Identifier: MIT
#include "tests/ui/custom_sale_desk.h"

using namespace Qt::StringLiterals;

namespace harrowby::test::custom_sale_desk {

const QString ale = u"A1  |  ALE"_s;

/// In the order of their names, in which a server lists items.
void openShop(Counter &counter)
{
    counter.file.addItem(u"A1"_s, u"ALE"_s, 1.25, 100);
    counter.file.addItem(u"C3"_s, u"BEER"_s, 1250, 40000);
    counter.file.addItem(u"B1"_s, u"BREAD"_s, 3, 0, u"FOOD"_s);
    counter.file.addItem(u"B2"_s, u"OLD BREAD"_s, 3, 8, u"FOOD"_s, u"Disabled"_s);
    counter.file.addItem(u"B3"_s, u"CAKE"_s, 20, 5, u"FOOD"_s);
    counter.file.sql(u"INSERT INTO InventoryCategory VALUES ('DRINKS',''),('FOOD','')"_s);
    counter.open();
    counter.logIn();
    counter.chooseTab("TabStrip1", WorkArea::CustomSales);
}

QStringList figures(const Counter &counter)
{
    return {counter.text("Label14"), counter.text("Label7"), counter.text("Label9"), counter.text("Label15")};
}

} // namespace harrowby::test::custom_sale_desk
