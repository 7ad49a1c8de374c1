// SPDX-License-Identifier: MIT
#include "tests/doubles/database.h"
#include "tests/doubles/server_shop.h"
#include "tests/program/test_program.h"
#include "tests/support/counter.h"
#include "tests/support/known_boxes.h"

#include "ui/widgets/pick_list.h"
#include "ui/widgets/row_list.h"
#include "ui/widgets/text_table_model.h"

#include <QCheckBox>
#include <QCoreApplication>
#include <QLabel>
#include <QListWidget>
#include <QSet>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::test;

namespace {

const QStringList tables{u"StockList"_s, u"InventoryCategory"_s, u"PurchaseCart"_s, u"StoreSettings"_s,
                         u"Users"_s,     u"SysUsage"_s};

/// Without their values no row of the table is found, and nothing of it is seen.
const QStringList lookedFor{u"StockUse"_s, u"Username"_s,     u"Password"_s,
                            u"Type"_s,     u"InventoryUse"_s, u"PurchasedDate"_s};

void fillShop(const ShopFile &shop)
{
    shop.sql(u"PRAGMA synchronous = OFF; PRAGMA journal_mode = MEMORY"_s); // no test survives a power cut
    for (int i = 0; i < 12; ++i)
        shop.addItem(u"A%1"_s.arg(i), u"ITEM %1"_s.arg(10 + i), 1250.5, 10 + i, i % 2 == 0 ? u"TEA"_s : u"SNACKS"_s);
    shop.addItem(u"B1"_s, u"BREAD, FINISHED"_s, 1, 0);
    shop.addItem(u"*STAR*"_s, u"STAR"_s, 1, 0);
    shop.sql(u"INSERT INTO InventoryCategory VALUES ('TEA',''),('SNACKS','');"
             "INSERT INTO PurchaseCart VALUES ('HV1','1 x A1  |  ITEM 11 = 3.00',1,3,'180305080000','ADMINISTRATOR');"
             "UPDATE StoreSettings SET ShowDetails = 1, Promptreorder = 1"_s);
}

constexpr qsizetype valuesForEachColumn = 5; ///< the others come in all columns of a table at once

/// What stands in a column where something else belongs.
const QList<std::pair<const char *, QString>> &oddValues()
{
    static const QList<std::pair<const char *, QString>> values{
        {"text", u"'a few, or more'"_s},
        {"empty", u"''"_s},
        {"null", u"NULL"_s},
        {"blob", u"X'00FF27C3280D0A'"_s},
        {"infinite", u"9e999"_s},
        {"NUL inside", u"CAST(X'4100420D0A43' AS TEXT)"_s},
        {"10,000 characters", u"replace(hex(zeroblob(5000)), '0', 'W')"_s},
        {"10,000 words", u"replace(hex(zeroblob(5000)), '00', 'tea ')"_s},
        {"emoji", u"'🍎👩‍👩‍👧‍👦🇬🇧'"_s},
        {"right to left", u"'שלום ABC مرحبا 12'"_s},
        {"markup", u"'<b>M & M</b>|  |'"_s},
        {"quote", u"'x'' or ''a''=''a'"_s},
        {"huge", u"1e300"_s},
        {"huge negative", u"-1e300"_s},
        {"largest integer", u"9223372036854775807"_s},
    };
    return values;
}

/// Shows each different box for real once a table, as that takes half of a day's time. One that was seen is answered at
/// once, after what a box's loop does besides: the window is painted.
class EachBoxOnce final : public Boxes
{
public:
    EachBoxOnce(const Counter &counter, QSet<QString> &seen, std::function<Answer(const QString &)> answer) :
        m_real(counter.qtBoxes), m_expected(counter.boxes), m_seen(seen), m_answer(std::move(answer))
    {
    }
    Answer message(QWidget *parent, const QString &text, int style, const QString &title) override
    {
        const QString shown = u"%1|%2|%3"_s.arg(QString::number(style), title, text);
        if (!m_seen.contains(shown) || !m_expected.isDone()) {
            m_seen.insert(shown);
            return m_real->message(parent, text, style, title);
        }
        QCoreApplication::processEvents();
        const Answer answer = m_answer(QString(text).replace(u"\r\n"_s, u"\n"_s)); // as on the screen
        return style % box::Critical == box::OkOnly ? Answer::Ok : answer;
    }
    QString input(QWidget *parent, const QString &prompt, const QString &title, const QString &initial) override
    {
        return m_real->input(parent, prompt, title, initial);
    }

private:
    std::shared_ptr<Boxes> m_real;
    const BoxQueue &m_expected;
    QSet<QString> &m_seen;
    std::function<Answer(const QString &)> m_answer;
};

} // namespace

/// Whatever a table is missing or holds: the window loads, sells what can be sold, and says nothing of it.
class BadTablesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void day_data();
    void day();

private:
    void addRows(const QString &table, const QStringList &columns);
    void sell(Counter &counter);
    void sellOtherwise(Counter &counter);
    void keepStock(Counter &counter);
    void takeBack(Counter &counter);
    void lookAround(Counter &counter);
    void checkWhatWorks(const Counter &counter, const QString &table) const;

    QStringList m_strangeBoxes;
    QString m_table;            ///< of the row before
    QSet<QString> m_shownBoxes; ///< of this table's rows
};

void BadTablesTest::day_data()
{
    QTest::addColumn<QString>("table");
    QTest::addColumn<QString>("damage");
    QTest::newRow("none") << QString() << QString();
    const ShopFile shop;
    for (const QString &table : tables) {
        QTest::addRow("no %s", qPrintable(table)) << table << u"DROP TABLE "_s + table;
        QTest::addRow("empty %s", qPrintable(table)) << table << u"DELETE FROM "_s + table;
        addRows(table, shop.rows(u"SELECT name FROM pragma_table_info('%1')"_s.arg(table)));
    }
}

void BadTablesTest::addRows(const QString &table, const QStringList &columns)
{
    for (const QString &column : columns) {
        const QString name = table + u'.' + column;
        QTest::addRow("no %s", qPrintable(name)) << table << u"ALTER TABLE %1 DROP COLUMN %2"_s.arg(table, column);
        for (const auto &[what, value] : oddValues().first(valuesForEachColumn))
            QTest::addRow("%s in %s", what, qPrintable(name))
                << table << u"UPDATE %1 SET %2 = %3"_s.arg(table, column, value);
    }
    for (const auto &[what, value] : oddValues()) {
        QStringList all;
        for (const QString &column : columns) {
            if (!lookedFor.contains(column, Qt::CaseInsensitive))
                all << column + u" = "_s + value;
        }
        QTest::addRow("%s in %s", what, qPrintable(table))
            << table << u"UPDATE "_s + table + u" SET "_s + all.join(u", "_s);
    }
}

void BadTablesTest::sell(Counter &counter)
{
    for (const char *button : {"Command1_0", "Command1_1", "Command1_1", "Command1_8"})
        counter.click(button);
    auto *cart = counter.find<RowList>("LV3");
    cart->selectRow(0);
    QTest::keyClick(cart, Qt::Key_Return);
    counter.click("Command12");
    counter.click("Command1_2");
    counter.click("Command14");
    counter.click("Command14");
}

/// By category and item, and from the search.
void BadTablesTest::sellOtherwise(Counter &counter)
{
    counter.chooseTab("TabStrip1", WorkArea::CustomSales);
    counter.pick("Combo2", 0);
    for (const char *item : {"A1  |  ITEM 11", "no such"}) {
        counter.setText("Combo3", QString::fromLatin1(item));
        Q_EMIT counter.find<PickList>("Combo3")->picked(0);
        counter.setText("Combo4", u"2"_s);
        counter.click("Command15");
    }
    if (counter.find<PickList>("Combo3")->count() > 0)
        counter.pick("Combo3", 0);
    if (counter.state().login.IsLoggedIn)
        counter.boxes.expectInput(u"Please Enter Search item name or ID?"_s, u"Searching for Stock Item"_s, QString(),
                                  u"star"_s);
    counter.click("Command8");
    counter.click("Command21");
    for (const char *key : {"Command31", "Command30_1", "Command30_10", "Command30_11"})
        counter.click(key);
}

void BadTablesTest::keepStock(Counter &counter)
{
    auto *list = counter.find<RowList>("LV");
    for (const int tab : {WorkArea::ReorderStock, WorkArea::EditStock}) {
        counter.chooseTab("TabStrip1", tab);
        list->selectRow(0);
        QTest::keyClick(list, Qt::Key_Return);
        counter.setText("Combo10", u"5"_s);
        for (const char *button : {"Command17", "Command23", "Command24", "Command5", "Command16"})
            counter.click(button);
    }
    counter.click("Command26");
    counter.setText("Combo7", u"NEW"_s);
    for (const char *figure : {"Combo8", "Combo13", "Combo14"})
        counter.setText(figure, u"3"_s);
    for (const char *button : {"Command16", "Command7"})
        counter.click(button);
    list->selectRow(list->rows().rowCount() - 1);
    counter.click("Command6");
}

void BadTablesTest::takeBack(Counter &counter)
{
    counter.click("Command25");
    counter.chooseTab("TabStrip1", WorkArea::Settings);
    if (auto *purchases = counter.find<PickList>("Combo17"); purchases->count() > 0)
        counter.pick("Combo17", purchases->count() - 1);
    for (const char *button : {"Command4", "Command19"})
        counter.click(button);
    counter.setText("Combo16", u"BREAD"_s);
    auto *categories = counter.find<QListWidget>("List2");
    for (const char *button : {"Command2", "Command22", "Command3"}) {
        categories->setCurrentRow(categories->count() - 1);
        counter.click(button);
    }
}

void BadTablesTest::lookAround(Counter &counter)
{
    for (const char *page : {"CmdNext", "CmdNext", "CmdPrev", "CmdPrev"})
        counter.click(page);
    for (const char *category : {"TEA", "no such", "(ALL CATEGORY)"})
        counter.setText("Combo1", QString::fromLatin1(category));
    auto *categories = counter.find<PickList>("Combo1");
    for (int key = 0; key < 3; ++key)
        QTest::keyClick(categories, Qt::Key_Down);
    for (auto tab = WorkArea::all.rbegin(); tab != WorkArea::all.rend(); ++tab)
        counter.chooseTab("TabStrip1", *tab);
    for (auto tab = SidePanel::all.rbegin(); tab != SidePanel::all.rend(); ++tab)
        counter.chooseTab("TabStrip2", *tab);
    QTest::mouseClick(counter.find<QLabel>("Label6_9"), Qt::LeftButton);
    for (const char *button : {"Command20", "Command11", "Command18"})
        counter.click(button);
    counter.window().grab(); // painting too
}

void BadTablesTest::checkWhatWorks(const Counter &counter, const QString &table) const
{
    const ShopFile &shop = counter.file;
    if (table != "Users"_L1)
        QCOMPARE(counter.text("StatusBar1_1"), u"User: ADMINISTRATOR"_s);
    if (table == "Users"_L1 || table == "StockList"_L1)
        return;
    QCOMPARE(shop.cell(u"SELECT sum(StockAvailable) FROM StockList"_s), u"184"_s); // 186, and two were sold
    if (table != "PurchaseCart"_L1)
        QCOMPARE(shop.cell(u"SELECT PurchasedItemsTotal FROM PurchaseCart WHERE PurchaseID <> 'HV1'"_s), u"2"_s);
    if (table != "SysUsage"_L1)
        QVERIFY(shop.cell(u"SELECT count(*) FROM SysUsage"_s).toInt() > 4);
}

void BadTablesTest::day()
{
    QFETCH(QString, table);
    QFETCH(QString, damage);
    m_strangeBoxes.clear();
    if (std::exchange(m_table, table) != table)
        m_shownBoxes.clear();
    Counter counter;
    counter.settings->values.clear(); // receipts too
    fillShop(counter.file);
    if (!counter.file.trySql(damage)) {
        QVERIFY(counter.file.hasRefusedAValue());
        QSKIP("a server does not store that");
    }
    const auto answer = [this](const QString &text) {
        if (!isKnownBox(text))
            m_strangeBoxes << text;
        return text.startsWith(u"Close"_s) ? Answer::No : Answer::Yes;
    };
    counter.boxes.answerTheRest(answer);
    counter.windowBoxes = std::make_shared<EachBoxOnce>(counter, m_shownBoxes, answer);
    counter.open();
    counter.click("Command1_0"); // refused
    counter.logIn();
    sell(counter);
    checkWhatWorks(counter, table);
    sellOtherwise(counter);
    keepStock(counter);
    takeBack(counter);
    lookAround(counter);
    counter.chooseTab("TabStrip1", WorkArea::QuickSales);
    counter.click("Command1_3");
    counter.click("Command27");
    counter.window().close();
    QCOMPARE(m_strangeBoxes, QStringList());
    QCOMPARE(counter.file.cell(u"PRAGMA integrity_check"_s), u"ok"_s);
    counter.close();
    QVERIFY(!counter.isOpen());
}

HARROWBY_TEST(bad_tables_test, BadTablesTest)
#include "bad_tables_test.moc"
