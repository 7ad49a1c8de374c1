// SPDX-License-Identifier: MIT
#include "app/hold/hold_desk.h"
#include "app/hold/hold_dialog.h"
#include "app/hold/hold_words.h"
#include "app/hold/list_dialog.h"
#include "app/records/sqlite_records.h"
#include "tables/table_view.h"
#include "tests/app/hold_till.h"
#include "tests/program/test_program.h"

#include <harrowby/counter.h>

#include <QAccessible>
#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <deque>
#include <functional>
#include <memory>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;
using namespace harrowby::app::test;

namespace {

QString wordsOf(const std::vector<CounterLine> &lines)
{
    QStringList all;
    for (const CounterLine &line : lines)
        all << u"%1|%2|%3|%4|%5"_s.arg(line.stockId, line.name)
                   .arg(line.quantity)
                   .arg(line.cost)
                   .arg(line.costByHand ? u"by hand"_s : u"-"_s);
    return all.join(u", "_s);
}

} // namespace

/// "Hold" at the real window over a real file, and back again. More on "Recall" is in recall_test.cpp.
class HoldTest : public HoldTill
{
    Q_OBJECT

private Q_SLOTS:
    void wordsAreTidied_data();
    void wordsAreTidied();
    void cartComesBackAsItWas();
    void statementsAreThese();
    void wordIsAskedFor();
    void takenWordIsAskedForAgain();
    void holdingCanBeCalledOff();
    void emptyCartIsNotHeld();
    void nobodyLoggedInIsTheGatesRefusal();
    void failedHoldLeavesTheCart();
    void cartThatStaysAtTheCounterIsTold_data();
    void cartThatStaysAtTheCounterIsTold();
    void holdThatNobodyKnowsIsTold();
    void everythingIsLargeEnoughAndNamed();
    void wordsAndReasonsAreNotCut();
    void nextWindowGetsTheButtons();
};

void HoldTest::wordsAreTidied_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("word");
    QTest::newRow("word") << u"MARY"_s << u"MARY"_s;
    QTest::newRow("case stays") << u"Mary"_s << u"Mary"_s;
    QTest::newRow("number") << u"12"_s << u"12"_s;
    QTest::newRow("blanks") << u"  the   red coat\t"_s << u"the red coat"_s;
    QTest::newRow("nothing") << u"   "_s << QString();
    QTest::newRow("quotes and signs") << u"O'NEIL 100% * \"x\""_s << u"O'NEIL 100% * \"x\""_s;
    QTest::newRow("NUL") << u"A"_s + QChar(u'\0') + u"B\u0007"_s << u"AB"_s;
    QTest::newRow("long") << QString(10'000, u'x') << QString(40, u'x');
    QTest::newRow("half a character at the end") << QString(39, u'x') + u"\U0001F34E"_s << QString(39, u'x');
}

void HoldTest::wordsAreTidied()
{
    QFETCH(const QString, typed);
    QTEST(heldWord(typed), "word");
}

void HoldTest::cartComesBackAsItWas()
{
    const std::vector<CounterLine> lines{{u"A1"_s, u"TEA"_s, 3, 7.5, false}, {u"b2"_s, u"HONEY"_s, 1, 3.33, true}};
    std::vector<CounterMisfit> misfits;
    QCOMPARE(counter().putCart(lines, misfits), CounterAnswer::Done);
    QVERIFY(misfits.empty());
    const QStringList before = cart();
    const QString total = m_till->text("Label5");
    holdAs(u"Mary"_s);
    QCOMPARE(cart(), QStringList());
    QCOMPARE(m_till->text("Label5"), u"Total: 0.00"_s);
    QCOMPARE(heldLines(), (QStringList{u"1|A1|TEA|3|7.5|0"_s, u"2|b2|HONEY|1|3.33|1"_s}));
    QCOMPARE(m_till->file.rows(u"SELECT Word, HeldBy, HeldLines, Total FROM HarrowbyHeld"_s),
             QStringList{u"Mary|ADMINISTRATOR|2|10.83"_s});
    QVERIFY(timeOfRecord(m_till->file.cell(u"SELECT HeldAt FROM HarrowbyHeld"_s)).isValid());

    CartHolder holder(counter(), *m_carts);
    QCOMPARE(holder.recall(heldCart(u"Mary"_s), misfits), HeldCarts::Taken::Done);
    QVERIFY(misfits.empty());
    QCOMPARE(cart(), before);
    QCOMPARE(m_till->text("Label5"), total);
    QCOMPARE(wordsOf(counter().cart()), wordsOf(lines));
    QCOMPARE(heldWords(), QStringList());
    QCOMPARE(heldLines(), QStringList());
}

void HoldTest::statementsAreThese()
{
    QCOMPARE(counter().sell(u"A1"_s), CounterAnswer::Done);
    QCOMPARE(counter().sell(u"b2"_s), CounterAnswer::Done);
    m_fuss->texts.clear();
    holdAs(u"1"_s);
    const QString list =
        u"select HeldID, Word, HeldAt, HeldBy, HeldLines, Total from HarrowbyHeld order by HeldAt, HeldID"_s;
    const QString line = u"insert into HarrowbyHeldLine (HeldID, Position, StockID, StockName, Quantity, Cost, "
                         "CostByHand) values (?, ?, ?, ?, ?, ?, ?)"_s;
    QCOMPARE(m_fuss->texts,
             (QStringList{u"create table if not exists HarrowbyHeldLine (HeldID text not null, Position integer not "
                          "null, StockID text not null, StockName text not null, Quantity double precision not null, "
                          "Cost double precision not null, CostByHand integer not null, primary key (HeldID, "
                          "Position))"_s,
                          u"create table if not exists HarrowbyHeld (HeldID text not null primary key, Word text not "
                          "null, HeldAt text not null, HeldBy text not null, HeldLines integer not null, Total double "
                          "precision not null)"_s,
                          u"begin"_s, list, line, // once for each of them
                          u"insert into HarrowbyHeld (HeldID, Word, HeldAt, HeldBy, HeldLines, Total) "
                          "values (?, ?, ?, ?, ?, ?)"_s,
                          u"commit"_s}));
    const HeldCart held = heldCart(u"1"_s);
    m_fuss->texts.clear();
    std::vector<CounterMisfit> misfits;
    QCOMPARE(CartHolder(counter(), *m_carts).recall(held, misfits), HeldCarts::Taken::Done);
    QCOMPARE(m_fuss->texts, (QStringList{u"begin"_s, u"delete from HarrowbyHeld where HeldID = ?"_s,
                                         u"select StockID, StockName, Quantity, Cost, CostByHand from HarrowbyHeldLine "
                                         "where HeldID = ? order by Position"_s,
                                         u"delete from HarrowbyHeldLine where HeldID = ?"_s, u"commit"_s}));
}

void HoldTest::wordIsAskedFor()
{
    QCOMPARE(counter().sell(u"A1"_s, 2), CounterAnswer::Done);
    inNextDialog([](QDialog &dialog) {
        auto *entry = dialog.findChild<QLineEdit *>(u"heldWord"_s);
        QCOMPARE(entry->text(), u"1"_s);
        QCOMPARE(entry->selectedText(), u"1"_s);
        QVERIFY(dialog.findChild<QLabel *>(u"heldQuestion"_s)->text().contains(u"(1 line, 5.00)"_s));
        QTest::keyClick(entry, Qt::Key_Return);
    });
    press(u"holdCart"_s);
    QCOMPARE(m_said, QStringList{u"Held as \"1\"."_s});
    QCOMPARE(cart(), QStringList());
    QCOMPARE(heldWords(), QStringList{u"1"_s});

    QCOMPARE(counter().sell(u"b2"_s), CounterAnswer::Done);
    inNextDialog([](QDialog &dialog) {
        auto *entry = dialog.findChild<QLineEdit *>(u"heldWord"_s);
        QCOMPARE(entry->text(), u"2"_s);
        QTest::keyClicks(entry, u" O'Neil "_s);
        dialog.findChild<QPushButton *>(u"holdUnder"_s)->click();
    });
    press(u"holdCart"_s);
    QCOMPARE(heldWords(), (QStringList{u"1"_s, u"O'Neil"_s}));
    QCOMPARE(m_dialogs, 2);
}

void HoldTest::takenWordIsAskedForAgain()
{
    QCOMPARE(counter().sell(u"A1"_s), CounterAnswer::Done);
    holdAs(u"MÄRY"_s);
    QCOMPARE(counter().sell(u"b2"_s), CounterAnswer::Done);
    inNextDialog([this](QDialog &dialog) {
        auto *entry = dialog.findChild<QLineEdit *>(u"heldWord"_s);
        entry->setText(u"märy"_s);
        inNextDialog([](QDialog &again) {
            QVERIFY(again.findChild<QLabel *>(u"heldProblem"_s)->text().contains(u"held as \"märy\" already"_s));
            auto *word = again.findChild<QLineEdit *>(u"heldWord"_s);
            QCOMPARE(word->selectedText(), u"märy"_s);
            QTest::keyClicks(word, u" "_s);
            QVERIFY(!again.findChild<QPushButton *>(u"holdUnder"_s)->isEnabled());
            QTest::keyClicks(word, u"ann"_s);
            again.findChild<QPushButton *>(u"holdUnder"_s)->click();
        });
        dialog.findChild<QPushButton *>(u"holdUnder"_s)->click();
    });
    press(u"holdCart"_s);
    QCOMPARE(heldWords(), (QStringList{u"MÄRY"_s, u"ann"_s}));
}

void HoldTest::holdingCanBeCalledOff()
{
    QCOMPARE(counter().sell(u"A1"_s), CounterAnswer::Done);
    inNextDialog([](QDialog &dialog) { dialog.findChild<QPushButton *>(u"cancelHold"_s)->click(); });
    press(u"holdCart"_s);
    QCOMPARE(cart().size(), 1);
    QCOMPARE(heldWords(), QStringList());
    QCOMPARE(m_said, QStringList());
}

void HoldTest::emptyCartIsNotHeld()
{
    press(u"holdCart"_s);
    QCOMPARE(m_said, QStringList{u"! The cart is empty: there is nothing to hold."_s});
    m_said.clear();
    press(u"recallCart"_s);
    QCOMPARE(m_said, QStringList{u"! No cart is held."_s});
    QCOMPARE(CartHolder(counter(), *m_carts).hold(u"1"_s), CartHolder::Held::CartEmpty);
}

void HoldTest::nobodyLoggedInIsTheGatesRefusal()
{
    QCOMPARE(counter().sell(u"A1"_s), CounterAnswer::Done);
    holdAs(u"1"_s);
    m_till->boxes.expect(u"Log out User[ADMINISTRATOR]?"_s, box::YesNo | box::Question | box::SecondButtonDefault,
                         Answer::Yes);
    m_till->click("Command27");
    for (const QString &button : {u"holdCart"_s, u"recallCart"_s}) {
        m_till->boxes.expect(u"You must Login in First!"_s, box::Exclamation);
        press(button);
    }
    std::vector<CounterMisfit> misfits;
    CartHolder holder(counter(), *m_carts);
    QCOMPARE(holder.hold(u"2"_s), CartHolder::Held::NobodyThere);
    QCOMPARE(holder.recall(heldCart(u"1"_s), misfits), HeldCarts::Taken::NotPut); // without a box
    QCOMPARE(heldWords(), QStringList{u"1"_s});
}

void HoldTest::failedHoldLeavesTheCart()
{
    QCOMPARE(counter().sell(u"A1"_s), CounterAnswer::Done);
    QCOMPARE(counter().sell(u"b2"_s), CounterAnswer::Done);
    const QStringList before = cart();
    CartHolder holder(counter(), *m_carts);
    for (int at = 0; at < 7; ++at) {
        m_fuss->texts.clear();
        m_fuss->failAt = at;
        QCOMPARE(holder.hold(u"1"_s), CartHolder::Held::NotHeld);
        m_fuss->failAt = -1;
        QCOMPARE(cart(), before);
        QCOMPARE(heldWords(), QStringList());
        if (at >= 2) // the tables are there
            QCOMPARE(heldLines(), QStringList());
        m_till->file.sql(u"DROP TABLE IF EXISTS HarrowbyHeld; DROP TABLE IF EXISTS HarrowbyHeldLine"_s);
    }
    holdAs(u"1"_s);
    m_till->file.sql(u"CREATE TRIGGER second BEFORE INSERT ON HarrowbyHeldLine WHEN new.Position = 2 "
                     "BEGIN SELECT raise(abort, 'no second line'); END"_s);
    QCOMPARE(counter().sell(u"A1"_s), CounterAnswer::Done);
    QCOMPARE(counter().sell(u"b2"_s), CounterAnswer::Done);
    const QStringList held = heldLines();
    QCOMPARE(holder.hold(u"2"_s), CartHolder::Held::NotHeld);
    QCOMPARE(cart(), before);
    QCOMPARE(heldLines(), held);
    m_fuss->failAt = 0; // the list of those that are held
    m_fuss->texts.clear();
    QCOMPARE(counter().sell(u"A1"_s), CounterAnswer::Done);
    press(u"holdCart"_s);
    QCOMPARE(m_said, QStringList{u"! The cart was not held: it is here as before."_s});
}

void HoldTest::cartThatStaysAtTheCounterIsTold_data()
{
    QTest::addColumn<QString>("meanwhile");
    QTest::addColumn<int>("failAt");
    QTest::addColumn<QString>("state");
    QTest::addColumn<QString>("box");
    QTest::addColumn<QStringList>("held");
    QTest::newRow("taken back") << QString() << -1 << QString() << QString() << QStringList();
    QTest::newRow("recalled at another till")
        << u"DELETE FROM HarrowbyHeldLine; DELETE FROM HarrowbyHeld"_s << -1 << QString()
        << u"The cart was held as \"1\" and has been recalled at another till, but it could not be taken off the "
           "counter."_s
        << QStringList();
    QTest::newRow("not taken back") << QString() << 0 << QString()
                                    << u"The cart is held as \"1\", but it could not be taken off the counter."_s
                                    << QStringList{u"1"_s};
    QTest::newRow("nobody knows") << QString() << 3 << u"08007"_s // the commit, behind begin and two deletes
                                  << u"It is not known whether the cart is held as \"1\". It is still here."_s
                                  << QStringList{u"1"_s};
}

void HoldTest::cartThatStaysAtTheCounterIsTold()
{
    QFETCH(const QString, meanwhile);
    QFETCH(const int, failAt);
    QFETCH(const QString, state);
    QFETCH(const QString, box);
    QFETCH(const QStringList, held);
    QCOMPARE(counter().sell(u"A1"_s), CounterAnswer::Done);
    const QStringList before = cart();
    QDialog inTheWay(&m_till->window());
    inTheWay.setModal(true);
    inNextDialog([&](QDialog &dialog) {
        m_fuss->afterCommit = [&] {
            inTheWay.show(); // so that the counter's cart cannot be emptied
            if (!meanwhile.isEmpty())
                m_till->file.sql(meanwhile);
            m_fuss->texts.clear();
            m_fuss->failAt = failAt;
            m_fuss->state = state;
        };
        dialog.findChild<QPushButton *>(u"holdUnder"_s)->click();
    });
    if (!box.isEmpty())
        answerNextBox(box, u"OK"_s);
    press(u"holdCart"_s);
    m_fuss->failAt = -1;
    inTheWay.hide();
    QCOMPARE(m_dialogs, box.isEmpty() ? 1 : 2);
    QCOMPARE(m_said, box.isEmpty() ? QStringList{u"! The cart was not held: it is here as before."_s} : QStringList());
    QCOMPARE(cart(), before);
    QCOMPARE(heldWords(), held);
}

/// Of a server: the cart may be on its list, too.
void HoldTest::holdThatNobodyKnowsIsTold()
{
    QStringList failed;
    m_records->setFailureHandler([&failed](const DbFailure &failure) { failed << failure.statement; });
    QCOMPARE(counter().sell(u"A1"_s), CounterAnswer::Done);
    holdAs(u"1"_s); // the tables are there
    QCOMPARE(counter().sell(u"b2"_s), CounterAnswer::Done);
    const QStringList before = cart();
    inNextDialog([this](QDialog &dialog) {
        m_fuss->failOn = u"commit"_s;
        m_fuss->state = u"08007"_s;
        dialog.findChild<QLineEdit *>(u"heldWord"_s)->setText(u"Mary"_s);
        dialog.findChild<QPushButton *>(u"holdUnder"_s)->click();
    });
    answerNextBox(u"It is not known whether the cart is held as \"Mary\". It is still here."_s, u"OK"_s);
    press(u"holdCart"_s);
    QCOMPARE(m_dialogs, 2);
    QCOMPARE(m_said, QStringList());
    QCOMPARE(cart(), before);
    QCOMPARE(failed, QStringList{u"INSERT HarrowbyHeld Mary"_s});
    m_fuss->state.clear(); // as on a file
    CartHolder holder(counter(), *m_carts);
    QCOMPARE(holder.hold(u"Mary"_s), CartHolder::Held::NotHeld);
    QCOMPARE(failed.constLast(), u"UPDATE HarrowbyHeld"_s);
}

void HoldTest::everythingIsLargeEnoughAndNamed()
{
    HoldDialog hold(u"3 lines, 12.50"_s, u"1"_s, nullptr);
    ListDialog list(ListDialog::Words{u"Recall"_s, u"Which cart comes back?"_s, u"Held carts"_s, u"&Recall"_s, 1},
                    heldTable({{u"id"_s, u"MARY"_s, QDateTime::currentDateTime(), u"ANN"_s, 3, 12.5}}), nullptr);
    for (QDialog *dialog : {static_cast<QDialog *>(&hold), static_cast<QDialog *>(&list)}) {
        dialog->show();
        QVERIFY(dialog->width() <= 790 && dialog->height() <= 570); // a screen of 800x600
        for (auto *widget : dialog->findChildren<QWidget *>()) {
            if (qobject_cast<QAbstractButton *>(widget) == nullptr && qobject_cast<QLineEdit *>(widget) == nullptr)
                continue;
            QVERIFY2(widget->height() >= 44, qPrintable(widget->objectName()));
            const auto *accessible = QAccessible::queryAccessibleInterface(widget);
            QVERIFY2(!accessible->text(QAccessible::Name).isEmpty(), qPrintable(widget->objectName()));
        }
    }
    const auto *table = list.findChild<tables::TableView *>();
    QCOMPARE(QAccessible::queryAccessibleInterface(list.findChild<QWidget *>(u"list"_s))->text(QAccessible::Name),
             u"Held carts"_s);
    QVERIFY(table->visualRect(table->model()->index(0, 0)).height() >= 32);
    for (const QString &name : {u"holdCart"_s, u"recallCart"_s}) {
        const auto *button = m_till->window().findChild<QPushButton *>(name);
        QVERIFY(button->isVisible() && button->height() >= 44 && button->focusPolicy() != Qt::NoFocus);
    }
    // The accelerators of the window stay the window's.
    QStringList letters;
    for (const auto *button : m_till->window().findChildren<QAbstractButton *>()) {
        const qsizetype mark = button->text().indexOf(u'&');
        if (mark >= 0 && !button->objectName().startsWith(u"Command1_"_s))
            letters << button->text().mid(mark + 1, 1).toUpper();
    }
    QVERIFY(letters.contains(u"H"_s) && letters.contains(u"E"_s));
    QCOMPARE(letters.removeDuplicates(), 0);
}

/// In the lists, on the smallest screen.
void HoldTest::wordsAndReasonsAreNotCut()
{
    CounterMisfit misfit;
    misfit.line = {u"A1"_s, u"BATTERIES"_s, 12, 1234.5, false};
    misfit.reason = CounterMisfit::Reason::NotRead;
    const HeldCart cart{u"id"_s, u"The lady with the red coat"_s, QDateTime::currentDateTime(), u"CASHIER"_s, 12,
                        1234.5};
    for (const tables::Table &table : {heldTable({cart}), misfitTable({misfit})}) {
        ListDialog list(ListDialog::Words{u"Recall"_s, u"Which?"_s, u"Carts"_s, u"&Recall"_s, 1}, table, nullptr);
        list.resize(788, 560);
        list.show();
        const auto *view = list.findChild<tables::TableView *>();
        for (int column = 0; column < view->model()->columnCount(); ++column) {
            const QModelIndex cell = view->model()->index(0, column);
            const int text = view->fontMetrics().horizontalAdvance(cell.data().toString());
            QVERIFY2(view->visualRect(cell).width() > text + 8, qPrintable(cell.data().toString()));
        }
    }
}

void HoldTest::nextWindowGetsTheButtons()
{
    m_till->close();
    m_till->open();
    m_desk->furnish();
    m_till->logIn();
    press(u"holdCart"_s);
    QCOMPARE(m_said.size(), 1);
}

HARROWBY_TEST(app_hold_test, HoldTest)
#include "hold_test.moc"
