// SPDX-License-Identifier: MIT
#include "tests/ui/search_desk.h"

using namespace Qt::StringLiterals;

namespace harrowby::test::search_desk {

const QString prompt = u"Please Enter Search item name or ID?"_s;

const QString title = u"Searching for Stock Item"_s;

void openShop(Counter &counter, int tab)
{
    counter.file.addItem(u"*A1*"_s, u"MILK"_s, 1.25, 20, u"DRINKS"_s, u"Enabled"_s, 25);
    counter.file.addItem(u"A2"_s, u"*TEA*"_s, 2.5, 100, u"HOT DRINKS"_s);
    counter.file.addItem(u"A3"_s, u"*tea*"_s, 2.5, 100, u"DRINKS"_s);
    counter.file.addItem(u"A4"_s, u"TEA"_s, 2.5, 100);
    counter.open();
    counter.logIn();
    counter.chooseTab("TabStrip1", tab);
}

void search(Counter &counter, const QString &text)
{
    counter.boxes.expectInput(prompt, title, QString(), text);
    counter.click("Command8");
}

QString statement(const QString &upper)
{
    return u"Select StockID, StockName, StockCategory from StockList where UPPER(StockID) like '*"_s + upper +
           u"*' or UPPER(StockName) like '*"_s + upper + u"*'  and StockUse = 'Enabled'"_s;
}

bool isOpen(const Counter &counter)
{
    return counter.find("Frame11")->isVisible();
}

} // namespace harrowby::test::search_desk
