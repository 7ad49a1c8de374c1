// SPDX-License-Identifier: MIT
#include "tests/ui/random_user.h"

#include "input/early_key_filter.h"
#include "tests/support/known_boxes.h"
#include "tests/ui/interruption.h"

#include "ui/widgets/pick_list.h"
#include "ui/widgets/row_list.h"
#include "ui/widgets/tab_strip.h"
#include "ui/widgets/text_table_model.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QApplication>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QTimer>

#include <sqlite3.h>

#include <array>
#include <cstdio>

using namespace Qt::StringLiterals;

namespace harrowby::test {

namespace {

constexpr int deepest = 3;
constexpr int items = 30;

void type(QWidget &widget, const QString &text)
{
    for (const QChar character : text) {
        QKeyEvent press(QEvent::KeyPress, 0, Qt::NoModifier, QString(character));
        QCoreApplication::sendEvent(&widget, &press);
    }
}

/// A change of the data, as another program might make it.
QString randomChange(QRandomGenerator &random)
{
    const QString item = u" WHERE StockID = 'A%1'"_s.arg(random.bounded(items));
    const QString text = quoted(randomText(random).left(300));
    const QStringList changes{
        u"DELETE FROM StockList"_s + item,
        u"INSERT INTO StockList (StockID, StockName, StockCategory, StockCost, StockAvailable, StockReorderLevel, "
        "StockUse) VALUES ('A%1', %2, 'TEA', 3.5, 20, 5, 'Enabled')"_s.arg(QString::number(random.bounded(items)),
                                                                           text),
        u"UPDATE StockList SET StockName = "_s + text + item,
        u"UPDATE StockList SET StockID = "_s + text + item,
        u"UPDATE StockList SET StockCost = "_s + text + item,
        u"UPDATE StockList SET StockCost = 9e999"_s + item,
        u"UPDATE StockList SET StockAvailable = "_s + text + item,
        u"UPDATE StockList SET StockAvailable = NULL, StockCost = X'00FF', StockName = X'4100'"_s + item,
        u"UPDATE StockList SET StockAvailable = 1e300"_s + item,
        u"UPDATE StockList SET StockAvailable = 40, StockCost = 2.5, StockUse = 'Enabled'"_s,
        u"UPDATE StockList SET StockUse = 'Disabled'"_s + item,
        u"UPDATE StockList SET StockCategory = 'TEA'"_s + item,
        u"DELETE FROM InventoryCategory"_s,
        u"INSERT INTO InventoryCategory VALUES (%1, '')"_s.arg(text),
        u"UPDATE StoreSettings SET ShowDetails = 1 - ShowDetails"_s,
        u"DELETE FROM StoreSettings"_s,
        u"UPDATE PurchaseCart SET PurchasedItemsCost = "_s + text,
        u"UPDATE PurchaseCart SET PurchasedItems = "_s + text,
        u"UPDATE PurchaseCart SET PurchasedItemsTotal = "_s + text,
        u"INSERT INTO PurchaseCart VALUES ('HV%1', '2 x A%1  |  ITEM 11 = 3.00, %2 x A1  |  ITEM 11 = 1', %2, 3, "
        "'180305', 'JANE')"_s.arg(random.bounded(20))
            .arg(random.bounded(5)),
        u"DELETE FROM PurchaseCart WHERE rowid % 2 = 0"_s,
        u"UPDATE StockList SET StockReorderLevel = "_s + text + item,
        u"UPDATE Users SET InventorySettings = - 1 - InventorySettings WHERE Username = 'JANE'"_s,
    };
    return oneOf(changes, random);
}

} // namespace

QString randomText(QRandomGenerator &random)
{
    static const QStringList texts{
        QString(),      u" "_s,
        u"'"_s,         u"x' or 'a'='a"_s,
        u"M & M"_s,     u"<b>X</b>"_s,
        u"0"_s,         u"1"_s,
        u"12"_s,        u"-3"_s,
        u"1,234.5"_s,   u"1e308"_s,
        u"9e999"_s,     u"32768"_s,
        u"TEA"_s,       u"(ALL CATEGORY)"_s,
        u"A1  |  B"_s,  u"🍎👩‍👩‍👧🇬🇧"_s,
        u"שלום עולם"_s, u"مرحبا 12"_s,
        u"\u202Eab"_s,  u"ﬁ ß İ ı"_s,
        u"a\tb\nc"_s,   u"%s%n{}"_s,
    };
    if (chance(random, 3))
        return oneOf(texts, random).repeated(10000 / 5);
    if (chance(random, 70))
        return oneOf(texts, random);
    QString text;
    for (int left = random.bounded(12); left > 0; --left)
        text += QChar(random.bounded(1, 0xD800));
    return text;
}

RandomUser::RandomUser(Counter &counter, RandomHost *host, quint32 seed) :
    m_counter(counter), m_host(host), m_other(counter.file.path()), m_random(seed), m_boxSeeds(seed + 1),
    m_tells(qEnvironmentVariableIsSet("HARROWBY_TRACE"))
{
    if (m_host != nullptr)
        m_host->watch([this](QRandomGenerator &random) { actLater(random); }, seed + 3);
    m_other.run(u"PRAGMA synchronous = OFF"_s);
    counter.qtBoxes->setObserver([this](QDialog &dialog) { meet(dialog); });
    counter.connection->before = [this](const QString &) { breathe(); };
    m_windows.settings = counter.settings;
    m_windows.meanwhile = [this](QRandomGenerator &random) { actLater(random); };
    m_windows.seeds.seed(seed + 2);
    registerWindows(*counter.objects, m_windows);
}

const std::vector<RandomUser::Action> &RandomUser::actions()
{
    static const std::vector<Action> all{
        {20, "sell", &RandomUser::sell},
        {6, "commit", &RandomUser::commit},
        {25, "click", &RandomUser::clickAnything},
        {12, "type", &RandomUser::typeSomewhere},
        {10, "key", &RandomUser::pressKey},
        {10, "pick", &RandomUser::pickEntry},
        {10, "tab", &RandomUser::chooseTab},
        {6, "row", &RandomUser::openRow},
        {6, "stock", &RandomUser::enterStock},
        {5, "reorder", &RandomUser::reorder},
        {5, "sell by hand", &RandomUser::sellByHand},
        {4, "search", &RandomUser::search},
        {4, "undo", &RandomUser::undoPurchase},
        {3, "categories", &RandomUser::changeCategories},
        {3, "keypad", &RandomUser::pressKeypad},
        {3, "window", &RandomUser::openForeignWindow},
        {12, "scan", &RandomUser::scan},
        {3, "hold", &RandomUser::hold},
        {4, "recall", &RandomUser::recall},
        {6, "pay", &RandomUser::pay},
        {2, "another till", &RandomUser::useAnotherTill},
        {2, "label", &RandomUser::clickLabel},
        {4, "close", &RandomUser::close},
        {1, "resize", &RandomUser::resize},
        {12, "interrupt", &RandomUser::interrupt},
        {10, "data", &RandomUser::changeData},
        {2, "lock", &RandomUser::lock},
        {1, "receipts", &RandomUser::printReceipts},
    };
    return all;
}

void RandomUser::act()
{
    m_counter.clock->time = m_counter.clock->time.addSecs(m_random.bounded(100));
    if (!m_counter.state().login.IsLoggedIn && chance(m_random, 40))
        logIn(m_random);
    else
        choose(m_random);
    if (m_lockedFor > 0 && --m_lockedFor == 0)
        m_other.run(u"ROLLBACK"_s);
}

void RandomUser::choose(QRandomGenerator &random)
{
    if (m_host != nullptr)
        m_host->look(m_nested);
    int total = 0;
    for (const Action &action : actions())
        total += action.weight;
    int left = random.bounded(total);
    for (const Action &action : actions()) {
        left -= action.weight;
        if (left >= 0)
            continue;
        if (m_tells)
            tell(action.name);
        (this->*action.act)(random);
        return;
    }
}

void RandomUser::tell(const char *action) const
{
    std::printf("%*s%s\n", 2 * m_depth, "", action);
    std::fflush(stdout); // a crash would lose what is buffered
}

void RandomUser::calmDown()
{
    m_slowStatements = 0;
    if (std::exchange(m_lockedFor, 0) > 0)
        m_other.run(u"ROLLBACK"_s);
    while (QWidget *popup = QApplication::activePopupWidget())
        popup->close();
}

/// Acts when the event loop runs next, also from within a breath.
void RandomUser::actLater(QRandomGenerator &random)
{
    QTimer::singleShot(0, this, [this, seed = random.generate()] {
        if (m_depth >= deepest || !m_counter.isOpen() || !m_counter.window().isVisible())
            return;
        QRandomGenerator own(seed);
        ++m_depth;
        ++m_nested;
        choose(own);
        --m_depth;
    });
}

void RandomUser::breathe()
{
    if (m_slowStatements > 0) {
        --m_slowStatements;
        passRest();
    }
}

template <typename Widget>
Widget *RandomUser::any(QRandomGenerator &random) const
{
    QList<Widget *> usable;
    for (Widget *widget : m_counter.window().findChildren<Widget *>()) {
        if (widget->isVisible() && widget->isEnabled() && widget->window() == &m_counter.window())
            usable << widget;
    }
    return usable.isEmpty() ? nullptr : oneOf(usable, random);
}

void RandomUser::logIn(QRandomGenerator &random)
{
    const std::array users{u"ADMINISTRATOR"_s, u"ADMINISTRATOR"_s, u"JANE"_s, u"JOHN"_s};
    m_counter.logIn(oneOf(users, random), chance(random, 90) ? u"PASS"_s : u"wrong"_s);
}

void RandomUser::sell(QRandomGenerator &random)
{
    m_counter.click(qPrintable(u"Command1_%1"_s.arg(random.bounded(9))));
}

void RandomUser::commit(QRandomGenerator &)
{
    m_counter.click("Command14");
}

/// Also buttons covered by another panel, as assistive technology reaches those.
void RandomUser::clickAnything(QRandomGenerator &random)
{
    if (auto *button = any<QAbstractButton>(random))
        QTest::mouseClick(button, Qt::LeftButton);
}

void RandomUser::typeSomewhere(QRandomGenerator &random)
{
    auto *edit = any<QLineEdit>(random);
    if (edit == nullptr)
        return;
    edit->setFocus();
    if (chance(random, 50))
        edit->selectAll();
    const QString text = randomText(random);
    if (text.size() > 40)
        edit->insert(text);
    else
        type(*edit, text);
}

void RandomUser::pressKey(QRandomGenerator &random)
{
    constexpr std::array keys{Qt::Key_Return, Qt::Key_Space,    Qt::Key_Tab,    Qt::Key_Backtab,
                              Qt::Key_Escape, Qt::Key_Up,       Qt::Key_Down,   Qt::Key_Left,
                              Qt::Key_Right,  Qt::Key_Delete,   Qt::Key_Home,   Qt::Key_End,
                              Qt::Key_F4,     Qt::Key_PageDown, Qt::Key_PageUp, Qt::Key_F12};
    auto *focus = m_counter.window().focusWidget();
    const auto modifier = chance(random, 10) ? Qt::ControlModifier : Qt::NoModifier;
    QTest::keyClick(focus != nullptr ? focus : &m_counter.window(), oneOf(keys, random), modifier);
}

void RandomUser::pickEntry(QRandomGenerator &random)
{
    const QPointer<PickList> list = any<PickList>(random);
    if (list == nullptr)
        return;
    list->showPopup();
    for (int steps = random.bounded(4); list && steps > 0; --steps)
        QTest::keyClick(list->view(), chance(random, 70) ? Qt::Key_Down : Qt::Key_Up);
    if (list)
        QTest::keyClick(list->view(), chance(random, 80) ? Qt::Key_Return : Qt::Key_Escape);
    if (list)
        list->hidePopup();
}

void RandomUser::chooseTab(QRandomGenerator &random)
{
    auto *strip = any<TabStrip>(random);
    const int tab = random.bounded(strip->count());
    if (chance(random, 60))
        QTest::mouseClick(strip, Qt::LeftButton, {}, strip->tabRect(tab).center());
    else
        QTest::keyClick(strip, chance(random, 50) ? Qt::Key_Right : Qt::Key_Left);
}

void RandomUser::openRow(QRandomGenerator &random)
{
    auto *list = any<RowList>(random);
    if (list == nullptr)
        return;
    const int rows = list->rows().rowCount();
    if (rows == 0)
        return;
    const int row = random.bounded(rows);
    list->selectRow(row);
    if (chance(random, 50))
        return QTest::keyClick(list, Qt::Key_Return);
    const QPoint place = list->visualRect(list->rows().index(row, 0)).center();
    const Qt::KeyboardModifiers modifier = chance(random, 20) ? Qt::ControlModifier : Qt::NoModifier;
    QTest::mouseClick(list->viewport(), Qt::LeftButton, modifier, place);
    QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, place);
}

void RandomUser::clickLabel(QRandomGenerator &random)
{
    QTest::mouseClick(m_counter.find(qPrintable(u"Label6_%1"_s.arg(random.bounded(10)))), Qt::LeftButton);
}

void RandomUser::close(QRandomGenerator &)
{
    m_counter.window().close();
}

void RandomUser::resize(QRandomGenerator &random)
{
    m_counter.window().resize(random.bounded(1024, 1920), random.bounded(768, 1080));
}

/// Runs other actions in the middle of the next one.
void RandomUser::interrupt(QRandomGenerator &random)
{
    m_slowStatements = random.bounded(1, 4);
    for (int times = random.bounded(1, 4); times > 0; --times)
        actLater(random);
    if (m_depth < deepest)
        choose(random);
}

void RandomUser::scan(QRandomGenerator &random)
{
    if (m_host != nullptr)
        m_host->scan(random);
}

void RandomUser::hold(QRandomGenerator &)
{
    if (m_host != nullptr)
        m_host->press(u"holdCart"_s);
}

void RandomUser::recall(QRandomGenerator &)
{
    if (m_host != nullptr)
        m_host->press(u"recallCart"_s);
}

void RandomUser::pay(QRandomGenerator &random)
{
    if (m_host != nullptr)
        chance(random, 40) ? m_host->press(u"payByCash"_s) : m_host->pay(random);
}

void RandomUser::useAnotherTill(QRandomGenerator &random)
{
    if (m_host != nullptr)
        m_host->useAnotherTill(random);
}

void RandomUser::changeData(QRandomGenerator &random)
{
    m_other.run(randomChange(random)); // may be refused by a lock
}

void RandomUser::lock(QRandomGenerator &random)
{
    if (m_lockedFor == 0 && m_other.run(chance(random, 50) ? u"BEGIN EXCLUSIVE"_s : u"BEGIN IMMEDIATE"_s))
        m_lockedFor = random.bounded(1, 6);
}

void RandomUser::printReceipts(QRandomGenerator &random)
{
    m_counter.settings->save(u"Option"_s, u"UsePOSforReceipt"_s, randomText(random));
    m_counter.settings->save(u"POS"_s, u"COM"_s, chance(random, 50) ? u"Till"_s : randomText(random));
    m_counter.settings->save(u"option"_s, u"Title"_s, randomText(random));
}

/// Boxes are answered at random; questions that would end the day are mostly answered with No.
void RandomUser::meet(QDialog &dialog)
{
    ++m_boxes;
    RandomHost::leave(dialog);
    const quint32 seed = m_boxSeeds.generate();
    if (QRandomGenerator random(seed); chance(random, 10))
        actLater(random);
    if (auto *message = qobject_cast<QMessageBox *>(&dialog))
        QTimer::singleShot(0, message, [this, message, seed] { answer(*message, seed); });
    else if (auto *input = qobject_cast<QInputDialog *>(&dialog))
        QTimer::singleShot(0, input, [this, input, seed] { answer(*input, seed); });
}

void RandomUser::answer(QMessageBox &message, quint32 seed)
{
    if (!EarlyKeyFilter::acceptsKeys(message)) // the key below would be dropped, and the box stay open
        return QTimer::singleShot(0, &message, [this, &message, seed] { answer(message, seed); });
    if (!isKnownBox(message.text()))
        m_strangeBoxes << message.text();
    QRandomGenerator random(seed);
    const bool endsTheDay = message.text().startsWith(u"Close"_s) || message.text().startsWith(u"Log out"_s);
    if (endsTheDay && !chance(random, 30))
        return message.button(QMessageBox::No)->click();
    if (chance(random, 15))
        return QTest::keyClick(&message, Qt::Key_Escape);
    const QList<QAbstractButton *> buttons = message.buttons();
    oneOf(buttons, random)->click();
}

void RandomUser::answer(QInputDialog &input, quint32 seed)
{
    if (!isKnownBox(input.labelText()))
        m_strangeBoxes << input.labelText();
    QRandomGenerator random(seed);
    if (chance(random, 70))
        input.setTextValue(randomText(random));
    chance(random, 80) ? input.accept() : input.reject();
}

} // namespace harrowby::test
