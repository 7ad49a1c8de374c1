// SPDX-License-Identifier: MIT
#include "app/codes/code_finder.h"
#include "app/hold/held_carts.h"
#include "app/till/till.h"
#include "tests/app/fussy_records.h"
#include "tests/doubles/database.h"
#include "tests/program/test_program.h"
#include "tests/support/counter.h"

#include <harrowby/counter.h>

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QApplication>
#include <QDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QTest>
#include <QTimer>

#include <memory>
#include <vector>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;
using namespace harrowby::app::test;

/// The store program at the counter when its tables, the disk or another program give it a bad day: each statement that
/// fails is told once, no cart is lost, and the sale goes on.
class BadDaysTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void everyStatementMayFail_data();
    void everyStatementMayFail();
    void oddTables_data();
    void oddTables();
    void fullDisk();
    void readOnlyStore();
    void lockedStore();
    void oddCodes_data();
    void oddCodes();

private:
    using Deed = void (BadDaysTest::*)();
    static const std::vector<std::pair<const char *, Deed>> &deeds();
    void doAll();

    // What a cashier, a manager and the program do
    void look() { Q_EMIT counter().stockDeleted(u"A1"_s); }
    void scanId() { scan(u"A1"_s); }
    void scanCase() { scan(u"CASE"_s); }
    void scanUnknown() { scan(u"4006381333931"_s); }
    void scanPrice() { scan(u"2112345019994"_s); }
    void scanWeight() { scan(u"2900042012352"_s); }
    void rename();
    void add() { Q_EMIT counter().stockSaved({}, u"NEW"_s); }
    void hold();
    void recall();
    void purchase();
    void undo();

    [[nodiscard]] static harrowby::Counter &counter() { return harrowby::Counter::instance(); }
    static void scan(const QString &code)
    {
        Q_EMIT counter().codeRead(code);
        QCoreApplication::sendPostedEvents();
    }
    void press(const QString &name) const { m_counter->window().findChild<QAbstractButton *>(name)->click(); }
    void answerDialog();
    void reset();
    void fillTables();
    void emptyCart();
    [[nodiscard]] int linesHeld() const;
    void checkSaleGoesOn();

    std::unique_ptr<harrowby::test::Counter> m_counter;
    std::unique_ptr<FussyRecords> m_records;
    std::unique_ptr<Till> m_till;
    QTimer m_dialogs;
    QStringList m_boxes; ///< texts of the program's own
    QList<DbFailure> m_told;
    int m_sounds = 0;
};

void BadDaysTest::init()
{
    m_counter = std::make_unique<harrowby::test::Counter>();
    const harrowby::test::ShopFile &file = m_counter->file;
    file.addItem(u"A1"_s, u"TEA"_s, 2.5, 30'000);
    file.addItem(u"12345"_s, u"CHEESE"_s, 9.99, 30'000);
    file.addItem(u"00042"_s, u"HAM"_s, 9.99, 30'000);
    m_records = std::make_unique<FussyRecords>(file.handle());
    m_records->countsLooks = true;
    m_records->setFailureHandler([this](const DbFailure &failure) { m_told << failure; });
    const OfficeSettings settings = {
        [](const QString &, const QString &, const QString &defaultValue) { return defaultValue; }, {}};
    m_till = std::make_unique<Till>(counter(), *m_records, settings, [this] { ++m_sounds; });
    m_counter->open();
    m_counter->logIn();
    QCoreApplication::sendPostedEvents();
    m_counter->boxes.answerTheRest([](const QString &) { return Answer::Yes; });
    connect(&m_dialogs, &QTimer::timeout, this, &BadDaysTest::answerDialog, Qt::UniqueConnection);
    m_dialogs.start(0);
    fillTables();
    m_told.clear();
    m_boxes.clear();
    m_sounds = 0;
}

void BadDaysTest::cleanup()
{
    m_dialogs.stop();
    m_till.reset();
    m_records.reset();
    m_counter.reset();
}

/// The first proposal is taken, the first row chosen, and questions are answered with yes.
void BadDaysTest::answerDialog()
{
    auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget());
    if (dialog == nullptr)
        return;
    if (const auto *box = qobject_cast<QMessageBox *>(dialog)) {
        m_boxes << box->text();
        for (QAbstractButton *button : box->buttons()) {
            if (box->buttonRole(button) == QMessageBox::AcceptRole)
                return button->click();
        }
    }
    if (auto *list = dialog->findChild<QAbstractItemView *>(u"list"_s);
        list != nullptr && list->model()->rowCount() > 0)
        list->setCurrentIndex(list->model()->index(0, 0));
    dialog->accept();
}

void BadDaysTest::fillTables()
{
    for (const RecordTable &table : {kept::setting(), kept::code(), kept::held()})
        m_counter->file.sql(table.making.join(u';'));
    m_counter->file.sql(u"INSERT INTO HarrowbyCode VALUES ('CASE', 'A1', 12), ('OLD', 'B1', 1), ('FORMER', 'NEW', 1);"
                        "INSERT INTO HarrowbySetting VALUES ('InStoreCode.21', '21IIIIIPPPPPC 2'), "
                        "('InStoreCode.29', '29IIIIIWWWWWC 3');"
                        "INSERT INTO HarrowbyHeldLine VALUES ('h', 1, 'A1', 'TEA', 2, 5, 0);"
                        "INSERT INTO HarrowbyHeld VALUES ('h', 'MARY', '2026-03-05T09:15:00.000Z', 'ANN', 1, 5)"_s);
}

void BadDaysTest::reset()
{
    m_counter->file.sql(u"DROP TABLE IF EXISTS HarrowbyCode; DROP TABLE IF EXISTS HarrowbyHeld; "
                        "DROP TABLE IF EXISTS HarrowbyHeldLine; DROP TABLE IF EXISTS HarrowbySetting"_s);
    fillTables();
    emptyCart();
    m_told.clear();
    m_boxes.clear();
    m_sounds = 0;
    m_records->texts.clear();
}

void BadDaysTest::emptyCart()
{
    std::vector<CounterLine> lines;
    (void)counter().takeCart(lines);
    QCoreApplication::sendPostedEvents();
}

void BadDaysTest::rename()
{
    Q_EMIT counter().stockSaved(u"B1"_s, u"B2"_s);
}

void BadDaysTest::hold()
{
    QCOMPARE(counter().sell(u"A1"_s), CounterAnswer::Done);
    press(u"holdCart"_s);
}

void BadDaysTest::recall()
{
    press(u"recallCart"_s);
}

/// Paid by card and in cash.
void BadDaysTest::purchase()
{
    QCOMPARE(counter().sell(u"A1"_s), CounterAnswer::Done);
    const Cents card = 100;
    const Cents rest = m_till->payments().sum().value_or(0) - card;
    QCOMPARE(m_till->payments().pay({{cardWay(), card, card}, {cashWay(), rest, rest + 50}}), CounterAnswer::Done);
    QCoreApplication::sendPostedEvents();
    m_counter->clock->time = m_counter->clock->time.addSecs(1);
}

void BadDaysTest::undo()
{
    m_counter->click("Command25");
    QCoreApplication::sendPostedEvents();
}

const std::vector<std::pair<const char *, BadDaysTest::Deed>> &BadDaysTest::deeds()
{
    static const std::vector<std::pair<const char *, Deed>> all{
        {"look", &BadDaysTest::look},
        {"scan of an ID", &BadDaysTest::scanId},
        {"scan of a case", &BadDaysTest::scanCase},
        {"scan of what nobody knows", &BadDaysTest::scanUnknown},
        {"scan of a price", &BadDaysTest::scanPrice},
        {"scan of a weight", &BadDaysTest::scanWeight},
        {"rename", &BadDaysTest::rename},
        {"add", &BadDaysTest::add},
        {"hold", &BadDaysTest::hold},
        {"recall", &BadDaysTest::recall},
        {"purchase", &BadDaysTest::purchase},
        {"undo", &BadDaysTest::undo},
    };
    return all;
}

void BadDaysTest::doAll()
{
    for (const auto &[name, deed] : deeds())
        (this->*deed)();
}

int BadDaysTest::linesHeld() const
{
    return m_counter->file.cell(u"SELECT count(*) FROM HarrowbyHeldLine"_s).toInt();
}

void BadDaysTest::checkSaleGoesOn()
{
    emptyCart();
    const int before = m_counter->file.cell(u"SELECT count(*) FROM PurchaseCart"_s).toInt();
    QCOMPARE(counter().sell(u"A1"_s), CounterAnswer::Done);
    QCOMPARE(m_counter->cart(), QStringList{u"A1  |  TEA|1|2.50"_s});
    QCOMPARE(counter().purchase(), CounterAnswer::Done);
    QCoreApplication::sendPostedEvents();
    m_counter->clock->time = m_counter->clock->time.addSecs(1);
    QCOMPARE(m_counter->file.cell(u"SELECT count(*) FROM PurchaseCart"_s).toInt(), before + 1);
    QCOMPARE(m_counter->file.cell(u"SELECT sum(Amount) FROM HarrowbyPayment WHERE State = 'PAID'"_s),
             m_counter->file.cell(u"SELECT CAST(round(sum(PurchasedItemsCost) * 100) AS INTEGER) FROM PurchaseCart"_s));
    QVERIFY(QApplication::activeModalWidget() == nullptr);
}

void BadDaysTest::everyStatementMayFail_data()
{
    QTest::addColumn<int>("deed");
    for (std::size_t i = 0; i < deeds().size(); ++i)
        QTest::newRow(deeds()[i].first) << static_cast<int>(i);
}

void BadDaysTest::everyStatementMayFail()
{
    QFETCH(const int, deed);
    const auto &[name, act] = deeds()[static_cast<std::size_t>(deed)];
    const bool isOfCarts = act == &BadDaysTest::hold || act == &BadDaysTest::recall;
    const bool isScan = QByteArray(name).startsWith("scan");
    checkSaleGoesOn(); // there is something to undo
    int statements = 0;
    for (;; ++statements) {
        reset();
        m_records->failAt = statements;
        (this->*act)();
        m_records->failAt = -1;
        QVERIFY(statements < 30);
        if (m_records->texts.size() <= statements)
            break; // it has fewer
        const QByteArray at = m_records->texts.at(statements).toUtf8();
        if (m_told.isEmpty() && at.startsWith("look for"))
            continue; // the table was made instead, or was there
        // Of a payment that was not written as a look before it failed, both are told.
        const bool isNotTried =
            m_told.constLast().statement == u"UPDATE HarrowbyPayment"_s && at != "begin" && at != "commit";
        QVERIFY2(m_told.size() == (isNotTried ? 2 : 1), at.constData());
        QVERIFY2(!isScan || (m_sounds == 1 && m_till->banner().text().contains(u"was not sold"_s)), at.constData());
        QVERIFY2(!isScan || m_counter->cart().isEmpty(), at.constData());
        const bool isSaid = m_till->banner().text().contains(u"not"_s) || m_boxes.join(u' ').contains(u"not"_s);
        QVERIFY2(!isOfCarts || isSaid, at.constData());
        // One line was held and "hold" has one more. Where both places have it, that was said.
        const qsizetype lines = linesHeld() + m_counter->cart().size();
        const bool isTwice = m_boxes.join(u' ').contains(u"is in the cart, but"_s);
        QVERIFY2(!isOfCarts || lines == (act == &BadDaysTest::hold ? 2 : 1) + (isTwice ? 1 : 0), at.constData());
        checkSaleGoesOn();
        if (QTest::currentTestFailed())
            return;
    }
    QVERIFY(statements > 0);
    QVERIFY(m_told.isEmpty());
}

void BadDaysTest::oddTables_data()
{
    QTest::addColumn<QString>("tables");
    QTest::addColumn<bool>("isTold"); ///< a statement fails

    const QString looseCodes = u"DROP TABLE HarrowbyCode; CREATE TABLE HarrowbyCode (Code, StockID, Units);"_s;
    QTest::newRow("codes: another table") << u"DROP TABLE HarrowbyCode; CREATE TABLE HarrowbyCode (Other)"_s << true;
    QTest::newRow("codes: nulls") << looseCodes + u"INSERT INTO HarrowbyCode VALUES (NULL, NULL, NULL), "
                                                  "('CASE', NULL, NULL), (NULL, 'A1', 1)"_s
                                  << false;
    QTest::newRow("codes: texts for numbers")
        << looseCodes + u"INSERT INTO HarrowbyCode VALUES ('CASE', 'A1', 'many')"_s << false;
    QTest::newRow("codes: huge") << looseCodes + u"INSERT INTO HarrowbyCode VALUES ('CASE', 'A1', 1e300), "
                                                 "('CASE', 'A1', 9223372036854775807)"_s
                                 << false;
    QTest::newRow("codes: less than nothing")
        << looseCodes + u"INSERT INTO HarrowbyCode VALUES ('CASE', 'A1', -12)"_s << false;
    QTest::newRow("codes: bytes and numbers")
        << looseCodes + u"INSERT INTO HarrowbyCode VALUES (X'4341534500FF', X'4131', X'31'), (4006381333931, 'A1', 1), "
                        "('CASE', 42, 1)"_s
        << false;
    QTest::newRow("codes: NULs") << looseCodes + u"INSERT INTO HarrowbyCode VALUES ('CASE' || char(0), 'A1', 1), "
                                                 "('CASE', 'A1' || char(0) || 'X', 1)"_s
                                 << false;

    QTest::newRow("settings: another table")
        << u"DROP TABLE HarrowbySetting; CREATE TABLE HarrowbySetting (Name)"_s << true;
    QTest::newRow("settings: rules that are none")
        << u"UPDATE HarrowbySetting SET Value = replace(hex(zeroblob(5000)), '0', 'I')"_s << false;
    QTest::newRow("settings: nulls") << u"DROP TABLE HarrowbySetting; CREATE TABLE HarrowbySetting (Name, Value); "
                                        "INSERT INTO HarrowbySetting VALUES (NULL, NULL), ('InStoreCode.21', NULL), "
                                        "('InStoreCode.29', X'FF00'), (7, 1e300)"_s
                                     << false;

    const QString looseCarts = u"DROP TABLE HarrowbyHeld; CREATE TABLE HarrowbyHeld (HeldID, Word, HeldAt, HeldBy, "
                               "HeldLines, Total); DROP TABLE HarrowbyHeldLine; CREATE TABLE HarrowbyHeldLine (HeldID, "
                               "Position, StockID, StockName, Quantity, Cost, CostByHand);"_s;
    QTest::newRow("carts: another table") << u"DROP TABLE HarrowbyHeld; CREATE TABLE HarrowbyHeld (Other)"_s << true;
    QTest::newRow("carts: no table of their lines") << u"DROP TABLE HarrowbyHeldLine"_s << true;
    QTest::newRow("carts: a table of other lines")
        << u"DROP TABLE HarrowbyHeldLine; CREATE TABLE HarrowbyHeldLine (HeldID)"_s << true;
    QTest::newRow("carts: nulls") << looseCarts + u"INSERT INTO HarrowbyHeld VALUES (NULL, NULL, NULL, NULL, NULL, "
                                                  "NULL), ('h', NULL, NULL, NULL, NULL, NULL); INSERT INTO "
                                                  "HarrowbyHeldLine VALUES ('h', NULL, NULL, NULL, NULL, NULL, NULL)"_s
                                  << false;
    QTest::newRow("carts: texts for numbers")
        << looseCarts + u"INSERT INTO HarrowbyHeld VALUES ('h', 'MARY', 'yesterday', 'ANN', 'some', 'much'); INSERT "
                        "INTO HarrowbyHeldLine VALUES ('h', 'first', 'A1', 'TEA', 'two', 'five', 'by hand')"_s
        << false;
    QTest::newRow("carts: huge")
        << looseCarts +
               u"INSERT INTO HarrowbyHeld VALUES ('h', hex(zeroblob(5000)), '99999-01-01', 'ANN', 1e300, "
               "9e999); INSERT INTO HarrowbyHeldLine VALUES ('h', 1, 'A1', 'TEA', 9e999, 1, 0), ('h', 2, 'A1', "
               "'TEA', 1e300, 1e300, 1), ('h', 3, 'A1', 'TEA', -1e300, -9e999, 1), ('h', 4, 'A1', 'TEA', "
               "40000, 1, 1), ('h', 5, 'A1', 'TEA', -3, 1, 0), ('h', 6, 'A1', 'TEA', 0.5, 1, 0)"_s
        << false;
    QTest::newRow("carts: bytes and NULs")
        << looseCarts + u"INSERT INTO HarrowbyHeld VALUES ('h', 'M' || char(0), X'00', X'FF', X'31', X'31'), (X'68', "
                        "'M' || char(0), '', '', 1, 1); INSERT INTO HarrowbyHeldLine VALUES ('h', 1, 'A' || char(0), "
                        "X'FF00', X'31', X'32', X'33'), ('h', 2, 'A''1', 'T''EA', 1, 1, 1)"_s
        << false;
    QTest::newRow("a view for a table")
        << u"DROP TABLE HarrowbyHeld; CREATE VIEW HarrowbyHeld AS SELECT 'h' AS HeldID, "
           "'w' AS Word, '' AS HeldAt, '' AS HeldBy, 1 AS HeldLines, 2 AS Total"_s
        << true;
}

/// Rows and tables as only another program can have left them.
void BadDaysTest::oddTables()
{
    QFETCH(const QString, tables);
    QFETCH(const bool, isTold);
    m_counter->file.sql(tables);
    doAll();
    QCOMPARE(!m_told.isEmpty(), isTold);
    QCOMPARE(m_counter->file.cell(u"PRAGMA integrity_check"_s), u"ok"_s);
    checkSaleGoesOn();
}

void BadDaysTest::fullDisk()
{
    m_counter->file.sql(u"DROP TABLE HarrowbyHeld; DROP TABLE HarrowbyHeldLine; VACUUM"_s);
    m_counter->file.sql(u"PRAGMA max_page_count = "_s + m_counter->file.cell(u"PRAGMA page_count"_s));
    hold();
    QCOMPARE(m_told.size(), 1);
    QCOMPARE(m_told.constFirst().engineCode & 0xff, 13); // full
    QCOMPARE(m_till->banner().text(), u"The cart was not held: it is here as before."_s);
    QCOMPARE(m_counter->cart(), QStringList{u"A1  |  TEA|1|2.50"_s});
    m_counter->file.sql(u"PRAGMA max_page_count = 1000000"_s);
    press(u"holdCart"_s);
    QCOMPARE(m_counter->cart(), QStringList());
    checkSaleGoesOn();
}

void BadDaysTest::readOnlyStore()
{
    m_counter->file.sql(u"PRAGMA query_only = 1"_s);
    doAll();
    QVERIFY(m_told.size() >= 4); // rename, add, hold, recall
    for (const DbFailure &failure : std::as_const(m_told))
        QVERIFY(failure.kind == DbFailure::Kind::Write);
    m_counter->file.sql(u"PRAGMA query_only = 0"_s);
    QCOMPARE(linesHeld(), 1);
    checkSaleGoesOn();
}

void BadDaysTest::lockedStore()
{
    harrowby::test::Database other(m_counter->file.path());
    QVERIFY(other.run(u"BEGIN EXCLUSIVE"_s));
    for (const auto &[name, deed] : deeds()) {
        if (deed == &BadDaysTest::hold || deed == &BadDaysTest::purchase || deed == &BadDaysTest::undo)
            continue; // the counter's own, first of all
        m_told.clear();
        (this->*deed)();
        QVERIFY2(!m_told.isEmpty(), name);
        QCOMPARE(m_told.constFirst().engineCode & 0xff, 5); // busy
    }
    QVERIFY(other.run(u"ROLLBACK"_s));
    QCOMPARE(m_counter->cart(), QStringList());
    QCOMPARE(linesHeld(), 1);
    checkSaleGoesOn();
}

void BadDaysTest::oddCodes_data()
{
    QTest::addColumn<QString>("odd");
    QTest::addColumn<bool>("isCode"); ///< what an item may have as a code
    QTest::newRow("quote") << u"A1' or '1'='1"_s << true;
    QTest::newRow("another statement") << u"A1'; delete from StockList; --"_s << true;
    QTest::newRow("double quote") << u"A1\" or \"1\"=\"1"_s << true;
    QTest::newRow("percent") << u"A%"_s << true;
    QTest::newRow("underscores") << u"A_"_s << true;
    QTest::newRow("asterisk") << u"*A1*"_s << true;
    QTest::newRow("marks of values") << u"?1 ?2 :a @b"_s << true;
    QTest::newRow("backslash") << u"A1\\"_s << true;
    QTest::newRow("NUL behind") << u"A1\u0000"_s << false;
    QTest::newRow("NUL between") << u"A1\u0000' or 1=1"_s << false;
    QTest::newRow("ten thousand") << u"A1"_s + QString(10'000, u'9') << false;
    QTest::newRow("ten thousand quotes") << QString(10'000, u'\'') << false;
    QTest::newRow("right to left") << u"\u202eA1"_s << false;
    QTest::newRow("isolate") << u"A1\u2066"_s << false;
    QTest::newRow("mark") << u"A\u200f1"_s << false;
    QTest::newRow("half a character") << u"A1"_s + QChar(0xd800) << false;
}

/// Refused or found exactly, by every way in, and no row changes by it.
void BadDaysTest::oddCodes()
{
    QFETCH(const QString, odd);
    QFETCH(const bool, isCode);
    harrowby::test::Database other(m_counter->file.path());
    const QStringList before = other.everything();
    scan(odd);
    QCOMPARE(m_sounds, 1);
    QVERIFY(m_till->banner().text().contains(isCode ? u"Nobody knows"_s : u"was refused"_s));
    QVERIFY(m_till->banner().text().size() < 160);
    QCOMPARE(counter().sell(odd), CounterAnswer::Unknown);
    QCOMPARE(m_counter->cart(), QStringList());
    QCOMPARE(other.everything(), before);
    QVERIFY(m_told.isEmpty());

    QCOMPARE(!CodeTable(*m_records).add(odd, u"A1"_s, 3), isCode);
    scan(odd);
    QCOMPARE(m_counter->cart(), isCode ? QStringList{u"A1  |  TEA|3|7.50"_s} : QStringList());
    scan(u"12345"_s);
    QCOMPARE(m_counter->cart().size(), isCode ? 2 : 1);
    checkSaleGoesOn();
}

HARROWBY_TEST(app_bad_days_test, BadDaysTest)
#include "bad_days_test.moc"
