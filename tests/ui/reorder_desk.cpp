// SPDX-License-Identifier: MIT
#include "tests/ui/reorder_desk.h"

#include "tests/doubles/database.h"

#include "ui/widgets/elided_label.h"

using namespace Qt::StringLiterals;

namespace harrowby::test::reorder_desk {

const QString milk = u"A1  |  MILK"_s;

const QString selectMilk = u"Select * from StockList where StockID = 'A1'"_s;

const QString nothingToUndo = u"Nothing to Undo!"_s;

bool isRed(const Counter &counter, const char *label)
{
    return counter.find<LevelLabel>(label)->isLow();
}

QString addQuestion(const QString &units, const QString &key)
{
    return u"Add "_s + units + u" New item(s) to Stock ["_s + key + u"]?"_s;
}

QString undoQuestion(const QString &units, const QString &key)
{
    return u"Undo last added value of "_s + units + u" from Stock ["_s + key + u"]?"_s;
}

QString available(const Counter &counter, const QString &id)
{
    return counter.file.cell(u"SELECT StockAvailable FROM StockList WHERE StockID = "_s + quoted(id));
}

QStringList logged(const Counter &counter)
{
    QStringList lines;
    for (const QString &line : counter.text("Text1").split(u'\n', Qt::SkipEmptyParts))
        lines << line.section(u"-- "_s, 1);
    return lines;
}

void openShop(Counter &counter)
{
    counter.file.addItem(u"A1"_s, u"MILK"_s, 1.25, 20, u"DRINKS"_s, u"Enabled"_s, 25);
    counter.file.addItem(u"A2"_s, u"TEA"_s, 2.5, 100, u"DRINKS"_s, u"Enabled"_s, 5);
    counter.file.addItem(u"B1"_s, u"BREAD"_s, 3, 0, u"FOOD"_s, u"Enabled"_s, 1);
    counter.file.addItem(u"B2"_s, u"OLD BREAD"_s, 3, 8, u"FOOD"_s, u"Disabled"_s, 1);
    counter.file.sql(u"INSERT INTO InventoryCategory VALUES ('DRINKS',''),('FOOD','')"_s);
    counter.open();
    counter.logIn();
    counter.chooseTab("TabStrip1", WorkArea::ReorderStock);
}

void choose(Counter &counter, const QString &key, const QString &units)
{
    counter.setText("Combo11", key);
    counter.setText("Combo10", units);
}

void reorder(Counter &counter, const QString &key, const QString &units, const QString &asked)
{
    choose(counter, key, units);
    counter.boxes.expect(addQuestion(asked, key), box::Ask, Answer::Yes);
    counter.click("Command17");
}

} // namespace harrowby::test::reorder_desk
