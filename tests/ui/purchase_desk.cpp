// SPDX-License-Identifier: MIT
#include "tests/ui/purchase_desk.h"

#include "tests/doubles/database.h"

using namespace Qt::StringLiterals;

namespace harrowby::test::purchase_desk {

void openShop(Counter &counter)
{
    counter.file.addItem(u"A1"_s, u"SAFE"_s, 1250, 10);
    counter.file.addItem(u"A2"_s, u"TEA"_s, 2.5, 20);
    counter.file.addItem(u"0012"_s, u"MILK"_s, 500, 30);
    counter.open();
    counter.logIn();
}

void addPurchase(const Counter &counter, const QString &id, const QString &items, const QString &count)
{
    counter.file.sql(u"INSERT INTO PurchaseCart VALUES (%1, %2, %3, 1, '180305080000', 'JACK')"_s.arg(
        quoted(id), quoted(items), count));
}

QStringList stock(const Counter &counter)
{
    return counter.file.rows(u"SELECT StockID, StockAvailable FROM StockList ORDER BY rowid"_s);
}

const QStringList untouched{u"A1|10"_s, u"A2|20"_s, u"0012|30"_s};

void commit(Counter &counter)
{
    for (const char *button : {"Command1_1", "Command1_2", "Command1_2"})
        counter.click(button);
    counter.boxes.expect(u"Item List:\r\n\r\n1. 1 x A1  |  SAFE = 1,250.00\r\n2. 2 x A2  |  TEA = 5.00\r\n\r\n\r\n\r\n"
                         "Purchased Cart?"_s,
                         box::Ask, Answer::Yes);
    counter.click("Command14");
}

const QStringList committedCart{u"A1  |  SAFE|1|1,250.00"_s, u"A2  |  TEA|2|5.00"_s};

void undo(Counter &counter, const QString &id)
{
    counter.boxes.expect(u"Undo last Purchased Cart with ID ["_s + id + u"]?"_s, box::Ask, Answer::Yes);
    counter.click("Command25");
}

void expectDeleteQuestion(Counter &counter, const QString &id, Answer answer)
{
    counter.boxes.expect(u"Delete Purchased Cart with ID ["_s + id +
                             u"].\r\nAll purchased items will br restored (Y/N)?"_s,
                         box::Ask, answer);
}

void deletePurchase(Counter &counter, const QString &id)
{
    counter.setText("Combo17", id);
    expectDeleteQuestion(counter, id, Answer::Yes);
    counter.click("Command4");
}

void expectNothingToUndo(Counter &counter)
{
    counter.boxes.expect(u"Nothing to Undo!"_s, box::Exclamation);
}

QStringList purchases(const Counter &counter)
{
    return counter.file.rows(u"SELECT PurchaseID FROM PurchaseCart ORDER BY rowid"_s);
}

} // namespace harrowby::test::purchase_desk
