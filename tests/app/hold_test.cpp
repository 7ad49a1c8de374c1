// SPDX-License-Identifier: MIT
#include "app/hold/hold_desk.h"
#include "app/hold/hold_dialog.h"
#include "app/hold/hold_words.h"
#include "app/hold/list_dialog.h"
#include "app/records/sqlite_records.h"
#include "tables/table_view.h"
#include "tests/program/test_program.h"
#include "tests/support/counter.h"

#include <harrowby/counter.h>

#include <QAccessible>
#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <sqlite3.h>

#include <deque>
#include <functional>
#include <memory>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;

namespace {

/// Notes its statements, and lets one of them fail.
class FussyRecords final : public SqliteRecords
{
public:
    using SqliteRecords::SqliteRecords;

    QStringList texts;
    int failAt = -1; ///< the statement of that number, counted from 0, begin and commit among them

protected:
    Answer<QList<RecordRow>> select(const RecordStatement &statement) override
    {
        if (auto failure = fails(statement.text))
            return Unexpected(*failure);
        return SqliteRecords::select(statement);
    }
    Answer<std::int64_t> change(const RecordStatement &statement) override
    {
        if (auto failure = fails(statement.text))
            return Unexpected(*failure);
        return SqliteRecords::change(statement);
    }
    std::optional<DbFailure> begin() override
    {
        auto failure = fails(u"begin"_s);
        return failure ? failure : SqliteRecords::begin();
    }
    std::optional<DbFailure> commit() override
    {
        auto failure = fails(u"commit"_s);
        return failure ? failure : SqliteRecords::commit();
    }

private:
    std::optional<DbFailure> fails(const QString &text)
    {
        texts << text;
        if (texts.size() - 1 != failAt)
            return {};
        return DbFailure{DbFailure::Kind::Write, text, u"the disk is gone"_s, 10};
    }
};

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

/// "Hold" and "Recall" at the real window over a real file.
class HoldTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void wordsAreTidied_data();
    void wordsAreTidied();
    void cartComesBackAsItWas();
    void statementsAreThese();
    void wordIsAskedFor();
    void takenWordIsAskedForAgain();
    void holdingCanBeCalledOff();
    void emptyCartIsNotHeld();
    void nobodyLoggedInIsTheGatesRefusal();
    void heldCartsAreListed();
    void recallCanBeCalledOff();
    void recallIntoACartAsks();
    void onlyOneTillGetsACart();
    void cartThatIsGoneIsTold();
    void misfitsAreToldInOneList();
    void failedHoldLeavesTheCart();
    void failedRecallLeavesTheCartHeld();
    void cartInBothPlacesIsTold();
    void everythingIsLargeEnoughAndNamed();
    void nextWindowGetsTheButtons();

private:
    [[nodiscard]] static harrowby::Counter &counter() { return harrowby::Counter::instance(); }
    [[nodiscard]] QStringList cart() const { return m_till->cart(); }
    void press(const QString &name) const;
    /// Runs `act` when the next dialog is shown, after those that were asked for before.
    void meetDialog();
    void inNextDialog(const std::function<void(QDialog &)> &act);
    void answerNextBox(const QString &begin, const QString &button);
    void answerRecall(const QString &word, const QString &button);
    /// Holds what is in the cart under a word, without the dialog.
    void holdAs(const QString &word);
    [[nodiscard]] QString idOf(const QString &word);
    [[nodiscard]] QStringList heldWords();
    [[nodiscard]] QStringList heldLines() const;

    std::unique_ptr<test::Counter> m_till;
    std::unique_ptr<FussyRecords> m_records;
    std::unique_ptr<HoldDesk> m_desk;
    std::unique_ptr<HeldCarts> m_carts;
    QStringList m_said;
    std::deque<std::function<void(QDialog &)>> m_acts;
    QTimer m_poll;
    int m_dialogs = 0;
};

void HoldTest::init()
{
    m_said.clear();
    m_dialogs = 0;
    m_acts.clear();
    m_poll.setInterval(1);
    connect(&m_poll, &QTimer::timeout, this, &HoldTest::meetDialog, Qt::UniqueConnection);
    m_till = std::make_unique<test::Counter>();
    const test::ShopFile &file = m_till->file;
    file.addItem(u"A1"_s, u"TEA"_s, 2.5, 30);
    file.addItem(u"b2"_s, u"HONEY"_s, 4, 5);
    file.addItem(u"C3"_s, u"BREAD"_s, 1.2, 12);
    file.addItem(u"D4"_s, u"MILK"_s, 0.99, 12);
    file.addItem(u"E5"_s, u"EGGS"_s, 3, 12);
    m_records = std::make_unique<FussyRecords>(file.handle());
    m_carts = std::make_unique<HeldCarts>(*m_records);
    m_desk = std::make_unique<HoldDesk>(counter(), *m_records, [this](const QString &text, bool isRefusal) {
        m_said << (isRefusal ? u"! "_s : QString()) + text;
    });
    m_till->open();
    m_desk->furnish();
    m_till->logIn();
}

void HoldTest::cleanup()
{
    m_desk.reset();
    m_carts.reset();
    m_records.reset();
    m_till.reset();
}

void HoldTest::press(const QString &name) const
{
    auto *button = m_till->window().findChild<QPushButton *>(name);
    QVERIFY(button != nullptr);
    QTest::mouseClick(button, Qt::LeftButton);
}

void HoldTest::inNextDialog(const std::function<void(QDialog &)> &act)
{
    m_acts.push_back(act);
    m_poll.start();
}

/// One dialog after the other: each act closes its own.
void HoldTest::meetDialog()
{
    auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget());
    if (dialog == nullptr || m_acts.empty())
        return;
    const auto act = m_acts.front();
    m_acts.pop_front();
    ++m_dialogs;
    const QPointer<QDialog> shown(dialog);
    act(*dialog);
    if (QTest::currentTestFailed() && shown)
        shown->reject();
    if (m_acts.empty())
        m_poll.stop();
}

void HoldTest::answerNextBox(const QString &begin, const QString &button)
{
    inNextDialog([begin, button](QDialog &dialog) {
        auto *box = qobject_cast<QMessageBox *>(&dialog);
        if (box == nullptr)
            return dialog.reject();
        if (!box->text().startsWith(begin))
            qCritical("An unexpected box: %s", qPrintable(box->text()));
        for (QAbstractButton *one : box->buttons()) {
            if (one->text().remove(u'&') == button)
                return one->click();
        }
        box->reject();
    });
}

void HoldTest::answerRecall(const QString &word, const QString &button)
{
    inNextDialog([word, button](QDialog &dialog) {
        auto *list = dialog.findChild<tables::TableView *>();
        const auto found = list->model()->match(list->model()->index(0, 0), Qt::DisplayRole, word, 1, Qt::MatchExactly);
        if (!found.isEmpty())
            list->setCurrentIndex(found.constFirst());
        dialog.findChild<QPushButton *>(button)->click();
    });
}

void HoldTest::holdAs(const QString &word)
{
    CartHolder holder(counter(), *m_carts);
    QCOMPARE(holder.hold(word), CartHolder::Held::Done);
}

QString HoldTest::idOf(const QString &word)
{
    for (const HeldCart &cart : m_carts->list().value_or(QList<HeldCart>())) {
        if (cart.word == word)
            return cart.id;
    }
    return {};
}

QStringList HoldTest::heldWords()
{
    QStringList words;
    for (const HeldCart &cart : m_carts->list().value_or(QList<HeldCart>()))
        words << cart.word;
    return words;
}

QStringList HoldTest::heldLines() const
{
    return m_till->file.rows(u"SELECT Position, StockID, StockName, Quantity, Cost, CostByHand FROM HarrowbyHeldLine "
                             "ORDER BY HeldID, Position"_s);
}

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
    QCOMPARE(heldLines(), (QStringList{u"1|A1|TEA|3.0|7.5|0"_s, u"2|b2|HONEY|1.0|3.33|1"_s}));
    QCOMPARE(m_till->file.rows(u"SELECT Word, HeldBy, HeldLines, Total FROM HarrowbyHeld"_s),
             QStringList{u"Mary|ADMINISTRATOR|2|10.83"_s});
    QVERIFY(timeOfRecord(m_till->file.cell(u"SELECT HeldAt FROM HarrowbyHeld"_s)).isValid());

    CartHolder holder(counter(), *m_carts);
    QCOMPARE(holder.recall(idOf(u"Mary"_s), misfits), HeldCarts::Taken::Done);
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
    m_records->texts.clear();
    holdAs(u"1"_s);
    const QString list =
        u"select HeldID, Word, HeldAt, HeldBy, HeldLines, Total from HarrowbyHeld order by HeldAt, HeldID"_s;
    const QString line = u"insert into HarrowbyHeldLine (HeldID, Position, StockID, StockName, Quantity, Cost, "
                         "CostByHand) values (?, ?, ?, ?, ?, ?, ?)"_s;
    QCOMPARE(m_records->texts,
             (QStringList{u"create table if not exists HarrowbyHeldLine (HeldID text not null, Position integer not "
                          "null, StockID text not null, StockName text not null, Quantity double precision not null, "
                          "Cost double precision not null, CostByHand integer not null, primary key (HeldID, "
                          "Position))"_s,
                          u"create table if not exists HarrowbyHeld (HeldID text not null primary key, Word text not "
                          "null, HeldAt text not null, HeldBy text not null, HeldLines integer not null, Total double "
                          "precision not null)"_s,
                          u"begin"_s, list, line, line,
                          u"insert into HarrowbyHeld (HeldID, Word, HeldAt, HeldBy, HeldLines, Total) "
                          "values (?, ?, ?, ?, ?, ?)"_s,
                          u"commit"_s}));
    const QString id = idOf(u"1"_s);
    m_records->texts.clear();
    std::vector<CounterMisfit> misfits;
    QCOMPARE(CartHolder(counter(), *m_carts).recall(id, misfits), HeldCarts::Taken::Done);
    QCOMPARE(m_records->texts,
             (QStringList{u"begin"_s, u"delete from HarrowbyHeld where HeldID = ?"_s,
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
    QCOMPARE(holder.recall(idOf(u"1"_s), misfits), HeldCarts::Taken::NotPut); // without a box
    QCOMPARE(heldWords(), QStringList{u"1"_s});
}

void HoldTest::heldCartsAreListed()
{
    QCOMPARE(counter().sell(u"A1"_s, 2), CounterAnswer::Done);
    QCOMPARE(counter().sell(u"b2"_s), CounterAnswer::Done);
    holdAs(u"Mary"_s);
    QCOMPARE(counter().sell(u"A1"_s), CounterAnswer::Done);
    holdAs(u"1"_s);
    m_till->file.sql(u"UPDATE HarrowbyHeld SET HeldAt = '2026-03-05T09:15:00.000Z' WHERE Word = '1'"_s);
    const QString since =
        QDateTime(QDate(2026, 3, 5), QTime(9, 15), Qt::UTC).toLocalTime().toString(u"yyyy-MM-dd HH:mm");
    QStringList first;
    int rows = 0;
    inNextDialog([&](QDialog &dialog) {
        auto *list = dialog.findChild<tables::TableView *>();
        rows = list->model()->rowCount();
        for (int column = 0; column < list->model()->columnCount(); ++column)
            first << list->model()->index(0, column).data().toString();
        QTest::keyClick(list, Qt::Key_Return);
    });
    press(u"recallCart"_s);
    QCOMPARE(rows, 2);
    QCOMPARE(first, (QStringList{u"1"_s, since, u"ADMINISTRATOR"_s, u"1"_s, u"2.50"_s})); // held longest
    QCOMPARE(m_said, QStringList{u"\"1\" is back in the cart."_s});
    QCOMPARE(cart(), QStringList{u"A1  |  TEA|1|2.50"_s});
    QCOMPARE(heldWords(), QStringList{u"Mary"_s});
}

void HoldTest::recallCanBeCalledOff()
{
    QCOMPARE(counter().sell(u"A1"_s), CounterAnswer::Done);
    holdAs(u"1"_s);
    answerRecall(u"1"_s, u"cancelList"_s);
    press(u"recallCart"_s);
    QCOMPARE(heldWords(), QStringList{u"1"_s});
    QCOMPARE(cart(), QStringList());
}

void HoldTest::recallIntoACartAsks()
{
    QCOMPARE(counter().sell(u"A1"_s, 2), CounterAnswer::Done);
    holdAs(u"Mary"_s);
    QCOMPARE(counter().sell(u"A1"_s), CounterAnswer::Done);
    QCOMPARE(counter().sell(u"b2"_s), CounterAnswer::Done);
    const QString question = u"The cart is not empty (2 lines, 6.50). Add \"Mary\" to it?"_s;
    inNextDialog([&](QDialog &dialog) {
        answerNextBox(question, u"Cancel"_s);
        dialog.findChild<QPushButton *>(u"listAction"_s)->click();
    });
    press(u"recallCart"_s);
    QCOMPARE(heldWords(), QStringList{u"Mary"_s});
    QCOMPARE(cart(), (QStringList{u"A1  |  TEA|1|2.50"_s, u"b2  |  HONEY|1|4.00"_s}));
    inNextDialog([&](QDialog &dialog) {
        answerNextBox(question, u"Add"_s);
        dialog.findChild<QPushButton *>(u"listAction"_s)->click();
    });
    press(u"recallCart"_s);
    QCOMPARE(heldWords(), QStringList());
    QCOMPARE(cart(), (QStringList{u"A1  |  TEA|3|7.50"_s, u"b2  |  HONEY|1|4.00"_s}));
    QCOMPARE(m_dialogs, 4);
}

void HoldTest::onlyOneTillGetsACart()
{
    QCOMPARE(counter().sell(u"A1"_s), CounterAnswer::Done);
    holdAs(u"1"_s);
    const QString id = idOf(u"1"_s);
    sqlite3 *raw = nullptr;
    QCOMPARE(sqlite3_open(m_till->file.path().toUtf8().constData(), &raw), SQLITE_OK);
    {
        SqliteRecords records(raw);
        HeldCarts other(records);
        int got = 0;
        const auto take = [&got](const std::vector<CounterLine> &lines) {
            got += static_cast<int>(lines.size());
            return true;
        };
        // The other till tries while this one is at it, and after that.
        QCOMPARE(m_carts->take(id,
                               [&](const std::vector<CounterLine> &lines) {
                                   return other.take(id, take) == HeldCarts::Taken::Failed && take(lines);
                               }),
                 HeldCarts::Taken::Done);
        QCOMPARE(other.take(id, take), HeldCarts::Taken::Gone);
        QCOMPARE(got, 1);
    }
    sqlite3_close(raw);
}

void HoldTest::cartThatIsGoneIsTold()
{
    QCOMPARE(counter().sell(u"A1"_s), CounterAnswer::Done);
    holdAs(u"1"_s);
    QCOMPARE(counter().sell(u"b2"_s), CounterAnswer::Done);
    holdAs(u"2"_s);
    inNextDialog([this](QDialog &dialog) { // another till recalls it while this one looks at the list
        QVERIFY(m_carts->drop(idOf(u"1"_s)));
        answerNextBox(u"\"1\" has just been recalled at another till."_s, u"OK"_s);
        answerRecall(u"2"_s, u"listAction"_s);
        dialog.findChild<QPushButton *>(u"listAction"_s)->click();
    });
    press(u"recallCart"_s);
    QCOMPARE(cart(), QStringList{u"b2  |  HONEY|1|4.00"_s});
}

void HoldTest::misfitsAreToldInOneList()
{
    for (const QString &id : {u"A1"_s, u"b2"_s, u"C3"_s, u"D4"_s, u"E5"_s})
        QCOMPARE(counter().sell(id, 3), CounterAnswer::Done);
    holdAs(u"1"_s);
    m_till->file.sql(u"UPDATE StockList SET StockAvailable = 0 WHERE StockID = 'A1';"
                     "UPDATE StockList SET StockAvailable = 2 WHERE StockID = 'b2';"
                     "UPDATE StockList SET StockCost = 1.50 WHERE StockID = 'C3';"
                     "DELETE FROM StockList WHERE StockID = 'D4';"
                     "UPDATE StockList SET StockUse = 'Disabled' WHERE StockID = 'E5'"_s);
    QStringList told;
    answerRecall(u"1"_s, u"listAction"_s);
    inNextDialog([&](QDialog &dialog) {
        const QAbstractItemModel *list = dialog.findChild<tables::TableView *>()->model();
        for (int row = 0; row < list->rowCount(); ++row) {
            QStringList texts;
            for (int column = 0; column < list->columnCount(); ++column)
                texts << list->index(row, column).data().toString();
            told << texts.join(u'|');
        }
        QVERIFY(dialog.findChild<QPushButton *>(u"cancelList"_s) == nullptr);
        dialog.findChild<QPushButton *>(u"listAction"_s)->click();
    });
    press(u"recallCart"_s);
    QCOMPARE(told, (QStringList{u"BREAD|3 for 3.60|3 for 4.50|at the price of today"_s,
                                u"EGGS|3 for 9.00|\u2013|no longer for sale: left out"_s,
                                u"HONEY|3 for 12.00|2 for 8.00|only 2 left"_s,
                                u"MILK|3 for 2.97|\u2013|no such item any more: left out"_s,
                                u"TEA|3 for 7.50|\u2013|sold out: left out"_s}));
    QCOMPARE(cart(), (QStringList{u"b2  |  HONEY|2|8.00"_s, u"C3  |  BREAD|3|4.50"_s}));
    QCOMPARE(heldWords(), QStringList());
}

void HoldTest::failedHoldLeavesTheCart()
{
    QCOMPARE(counter().sell(u"A1"_s), CounterAnswer::Done);
    QCOMPARE(counter().sell(u"b2"_s), CounterAnswer::Done);
    const QStringList before = cart();
    CartHolder holder(counter(), *m_carts);
    for (int at = 0; at < 8; ++at) {
        m_records->texts.clear();
        m_records->failAt = at;
        QCOMPARE(holder.hold(u"1"_s), CartHolder::Held::NotHeld);
        m_records->failAt = -1;
        QCOMPARE(cart(), before);
        QCOMPARE(heldWords(), QStringList());
        if (at >= 2) // the tables are there
            QCOMPARE(heldLines(), QStringList());
        m_till->file.sql(u"DROP TABLE IF EXISTS HarrowbyHeld; DROP TABLE IF EXISTS HarrowbyHeldLine"_s);
    }
    holdAs(u"1"_s);
    m_records->failAt = 0; // the list of those that are held
    m_records->texts.clear();
    QCOMPARE(counter().sell(u"A1"_s), CounterAnswer::Done);
    press(u"holdCart"_s);
    QCOMPARE(m_said, QStringList{u"! The cart was not held: it is here as before."_s});
}

void HoldTest::failedRecallLeavesTheCartHeld()
{
    QCOMPARE(counter().sell(u"A1"_s), CounterAnswer::Done);
    QCOMPARE(counter().sell(u"b2"_s), CounterAnswer::Done);
    holdAs(u"1"_s);
    const QString id = idOf(u"1"_s);
    const QStringList lines = heldLines();
    std::vector<CounterMisfit> misfits;
    CartHolder holder(counter(), *m_carts);
    for (int at = 0; at < 4; ++at) { // begin, delete, read, delete
        m_records->texts.clear();
        m_records->failAt = at;
        QCOMPARE(holder.recall(id, misfits), HeldCarts::Taken::Failed);
        m_records->failAt = -1;
        QCOMPARE(cart(), QStringList());
        QCOMPARE(heldWords(), QStringList{u"1"_s});
        QCOMPARE(heldLines(), lines);
    }
}

void HoldTest::cartInBothPlacesIsTold()
{
    QCOMPARE(counter().sell(u"A1"_s), CounterAnswer::Done);
    holdAs(u"1"_s);
    answerRecall(u"1"_s, u"listAction"_s);
    answerNextBox(u"\"1\" is in the cart, but it could not be taken off the list"_s, u"OK"_s);
    m_records->texts.clear();
    m_records->failAt = 5; // list, begin, delete, read, delete, and the commit
    press(u"recallCart"_s);
    m_records->failAt = -1;
    QCOMPARE(m_dialogs, 2);
    QCOMPARE(cart(), QStringList{u"A1  |  TEA|1|2.50"_s});
    QCOMPARE(heldWords(), QStringList{u"1"_s});
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
