// SPDX-License-Identifier: MIT
#include "app/codes/code_finder.h"
#include "app/codes/code_table.h"
#include "app/records/sqlite_records.h"
#include "app/till/till.h"
#include "tests/program/test_program.h"
#include "tests/support/counter.h"

#include <harrowby/counter.h>

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <memory>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;

/// The store program at the counter: the real window, and beside it what the program adds.
class TillTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void itemIsSoldByItsId();
    void caseSellsItsUnits();
    void sameNumberInAnotherLengthIsSold();
    void unknownCodeIsShownAndTheNextOneWorks();
    void refusals_data();
    void refusals();
    void notEnoughIsTheCountersOwnBox();
    void loggedOutIsTheGatesOwnRefusal();
    void pricesInsideAreAdded();
    void pricedItemIsSoldOut();
    void storeThatCannotBeReadIsTold();
    void refusalsOfReaders();
    void purchaseMakesRoomForTheNext();
    void renamedItemKeepsItsCodes();
    void codesThatCannotFollowAreTold();
    void emptyShopIsToldWhatToDoFirst();
    void nextWindowGetsTheBanner();
    void whatBecameOfTheCartStandsUntilItChanges();

private:
    void scan(const QString &code)
    {
        Q_EMIT harrowby::Counter::instance().codeRead(code);
        QCoreApplication::sendPostedEvents();
    }
    void code(const QString &code, const QString &id, int units = 1)
    {
        QVERIFY(!CodeTable(*m_records).add(code, id, units));
    }
    void saveItem(const QString &id, const QString &name)
    {
        for (const auto &[entry, text] : {std::pair("Combo5", u"DRINKS"_s),
                                          {"Combo6", id},
                                          {"Combo7", name},
                                          {"Combo8", u"4.00"_s},
                                          {"Combo13", u"1"_s},
                                          {"Combo14", u"9"_s},
                                          {"Combo15", u"Enabled"_s}})
            m_counter->setText(entry, text);
        m_counter->click("Command16");
        QCoreApplication::sendPostedEvents();
    }
    [[nodiscard]] QString said() const { return m_till->banner().text(); }

    std::unique_ptr<test::Counter> m_counter;
    std::unique_ptr<SqliteRecords> m_records;
    std::unique_ptr<Till> m_till;
    QList<DbFailure> m_failures;
    int m_sounds = 0;
};

void TillTest::init()
{
    m_sounds = 0;
    m_failures.clear();
    m_counter = std::make_unique<test::Counter>();
    const test::ShopFile &file = m_counter->file;
    file.addItem(u"A1"_s, u"TEA"_s, 2.5, 30);
    file.addItem(u"a2"_s, u"GREEN TEA"_s, 3, 5);
    file.addItem(u"X1"_s, u"OLD TEA"_s, 1, 10, u"DRINKS"_s, u"Disabled"_s);
    file.addItem(u"M1"_s, u"Mint tea"_s, 1, 10);
    m_records = std::make_unique<SqliteRecords>(file.handle());
    m_records->setFailureHandler([this](const DbFailure &failure) { m_failures << failure; });
    const OfficeSettings settings = {
        [](const QString &, const QString &, const QString &defaultValue) { return defaultValue; }, {}};
    m_till = std::make_unique<Till>(harrowby::Counter::instance(), *m_records, settings, [this] { ++m_sounds; });
    m_counter->open();
    QCoreApplication::sendPostedEvents();
    m_counter->logIn();
    QCoreApplication::sendPostedEvents();
}

void TillTest::cleanup()
{
    m_till.reset();
    m_records.reset();
    m_counter.reset();
}

void TillTest::itemIsSoldByItsId()
{
    scan(u"A1"_s);
    QCOMPARE(m_counter->cart(), QStringList{u"A1  |  TEA|1|2.50"_s});
    scan(u"A1"_s); // without a question
    scan(u"a2"_s);
    QCOMPARE(m_counter->cart(), (QStringList{u"A1  |  TEA|2|5.00"_s, u"a2  |  GREEN TEA|1|3.00"_s}));
    QCOMPARE(m_counter->text("Label5"), u"Total: 8.00"_s);
    QCOMPARE(said(), QString());
    QCOMPARE(m_sounds, 0);
}

void TillTest::caseSellsItsUnits()
{
    code(u"CASE"_s, u"A1"_s, 12);
    scan(u"CASE"_s);
    QCOMPARE(m_counter->cart(), QStringList{u"A1  |  TEA|12|30.00"_s});
    QCOMPARE(said(), u"12 x TEA (A1)"_s);
    scan(u"CASE"_s);
    QCOMPARE(m_counter->cart(), QStringList{u"A1  |  TEA|24|60.00"_s});
    scan(u"A1"_s);
    QCOMPARE(said(), QString());
}

void TillTest::sameNumberInAnotherLengthIsSold()
{
    code(u"036000291452"_s, u"A1"_s);
    for (const QString &written : {u"036000291452"_s, u"0036000291452"_s, u"00036000291452"_s})
        scan(written);
    QCOMPARE(m_counter->cart(), QStringList{u"A1  |  TEA|3|7.50"_s});
}

void TillTest::unknownCodeIsShownAndTheNextOneWorks()
{
    scan(u"4006381333931"_s);
    QCOMPARE(said(), u"Nobody knows the code 4006381333931. Nothing was added."_s);
    QCOMPARE(m_sounds, 1);
    QCOMPARE(m_counter->cart(), QStringList());
    const auto *label = m_counter->window().findChild<QLabel *>(u"hostBannerText"_s);
    QVERIFY(label && label->isVisible());
    QVERIFY(label->text().startsWith(u"\u26a0 Nobody knows"_s));
    scan(u"A1"_s);
    QCOMPARE(m_counter->cart().size(), 1);
    QCOMPARE(said(), QString());
    QCOMPARE(m_sounds, 1);
}

void TillTest::refusals_data()
{
    QTest::addColumn<QString>("scanned");
    QTest::addColumn<QString>("said");
    QTest::newRow("odd") << u"A1\u0000"_s
                         << u"The code A1\u00b7 was refused: it holds a character that cannot be seen."_s;
    QTest::newRow("long") << QString(10000, u'9')
                          << u"The code "_s + QString(40, u'9') +
                                 u"\u2026 was refused: it is longer than 64 characters."_s;
    QTest::newRow("gone") << u"GONE"_s << u"The code GONE belongs to an item that is gone. Nothing was added."_s;
    QTest::newRow("two") << u"0036000291452"_s
                         << u"The code 0036000291452 is that of two items: BREAD (0036000291452) and TEA (A1). "
                            "Nothing was added."_s;
    QTest::newRow("disabled") << u"X1"_s << u"OLD TEA (X1) is switched off in the stock. Nothing was added."_s;
    QTest::newRow("small letters") << u"M1"_s
                                   << u"Mint tea (M1) has small letters in its name. Save it once under "
                                      "\"Add/Edit Stock\"."_s;
    QTest::newRow("quote") << u"A1' or '1'='1"_s << u"Nobody knows the code A1' or '1'='1. Nothing was added."_s;
}

void TillTest::refusals()
{
    QFETCH(QString, scanned);
    QFETCH(QString, said);
    code(u"036000291452"_s, u"A1"_s);
    m_counter->file.addItem(u"0036000291452"_s, u"BREAD"_s, 1, 5);
    m_counter->file.sql(u"insert into HarrowbyCode values ('GONE', 'G1', 1)"_s);
    scan(scanned);
    QCOMPARE(this->said(), said);
    QCOMPARE(m_sounds, 1);
    QCOMPARE(m_counter->cart(), QStringList());
}

void TillTest::notEnoughIsTheCountersOwnBox()
{
    code(u"SIX"_s, u"a2"_s, 6);
    m_counter->boxes.expect(u"There are only 5 item(s) in stock for a2  |  GREEN TEA. Kindly reorder Stock!"_s,
                            box::Information);
    scan(u"SIX"_s);
    QCOMPARE(m_counter->cart(), QStringList());
    QCOMPARE(said(), QString());
}

void TillTest::loggedOutIsTheGatesOwnRefusal()
{
    m_counter->boxes.expect(u"Log out User[ADMINISTRATOR]?"_s, box::AskDefaultNo, Answer::Yes);
    m_counter->click("Command27");
    QCoreApplication::sendPostedEvents();
    for (const QString &scanned : {u"A1"_s, u"nobody's"_s}) {
        m_counter->boxes.expect(u"You must Login in First!"_s, box::Exclamation);
        scan(scanned);
    }
    QCOMPARE(m_counter->cart(), QStringList());
    QCOMPARE(said(), QString());
}

void TillTest::pricesInsideAreAdded()
{
    m_counter->file.addItem(u"12345"_s, u"CHEESE"_s, 9.99, 3);
    QVERIFY(!ShopSettings(*m_records).save(inStoreSetting(u"21"_s), u"21IIIIIPPPPPC 2"_s));
    scan(u"2112345019994"_s);
    QCOMPARE(m_counter->cart().value(0).section(u'|', -2), u"1|19.99"_s);
    QCOMPARE(said(), u"CHEESE (12345): 19.99"_s);
    scan(u"2112345019994"_s);
    QCOMPARE(m_counter->cart().size(), 1);
    QCOMPARE(m_counter->cart().value(0).section(u'|', -2), u"2|39.98"_s);
    QVERIFY(harrowby::Counter::instance().cart().front().costByHand);
    QCOMPARE(harrowby::Counter::instance().total(), 39.98F);
}

void TillTest::pricedItemIsSoldOut()
{
    m_counter->file.addItem(u"12345"_s, u"CHEESE"_s, 9.99, 1);
    QVERIFY(!ShopSettings(*m_records).save(inStoreSetting(u"21"_s), u"21IIIIIPPPPPC 2"_s));
    scan(u"2112345019994"_s);
    scan(u"2112345019994"_s);
    QCOMPARE(said(), u"There is no more of CHEESE (12345) in stock. Nothing was added."_s);
    QCOMPARE(m_sounds, 1);
    QCOMPARE(m_counter->cart().value(0).section(u'|', -2), u"1|19.99"_s); // as it was
}

void TillTest::storeThatCannotBeReadIsTold()
{
    m_counter->file.sql(u"alter table StockList rename to Former"_s);
    scan(u"A1"_s);
    QCOMPARE(said(), u"The code A1 was not sold: the store could not be read. Try again."_s);
    QCOMPARE(m_sounds, 1);
    QCOMPARE(m_failures.size(), 1);
    m_counter->file.sql(u"alter table Former rename to StockList"_s);
    scan(u"A1"_s);
    QCOMPARE(m_counter->cart(), QStringList{u"A1  |  TEA|1|2.50"_s}); // the sale goes on
}

void TillTest::refusalsOfReaders()
{
    using Refusal = harrowby::Counter::CodeRefusal;
    Q_EMIT harrowby::Counter::instance().codeRefused(Refusal::BoxOpen);
    QCOMPARE(said(), u"A code was not taken: close the box first."_s);
    Q_EMIT harrowby::Counter::instance().codeRefused(Refusal::Mixed);
    QCOMPARE(said(), u"Two readers came at once, and neither code was taken. Scan again, one after the other."_s);
    QCOMPARE(m_sounds, 2);
}

void TillTest::purchaseMakesRoomForTheNext()
{
    code(u"CASE"_s, u"A1"_s, 12);
    scan(u"CASE"_s);
    m_till->banner().say(BannerTopic::Reader, u"A reader is gone."_s);
    QCOMPARE(said(), u"12 x TEA (A1)"_s);
    m_counter->boxes.expect(u"Item List:\r\n\r\n1. 12 x A1  |  TEA = 30.00\r\n\r\n\r\n\r\nPurchased Cart?"_s, box::Ask,
                            Answer::Yes);
    m_counter->click("Command14");
    QCoreApplication::sendPostedEvents();
    QCOMPARE(said(), u"A reader is gone."_s);
}

void TillTest::renamedItemKeepsItsCodes()
{
    code(u"CODE"_s, u"A1"_s);
    m_counter->boxes.answerTheRest([](const QString &) { return Answer::Yes; });
    m_counter->chooseTab("TabStrip1", WorkArea::EditStock);
    saveItem(u"B7"_s, u"TEA"_s); // found by its name: it has another ID now
    scan(u"CODE"_s);
    QCOMPARE(m_counter->cart(), QStringList{u"B7  |  TEA|1|4.00"_s});
    saveItem(u"B7"_s, u"BLACK TEA"_s); // found by its ID: it has another name now
    scan(u"CODE"_s);
    QCOMPARE(m_counter->cart().last(), u"B7  |  BLACK TEA|1|4.00"_s);
    m_counter->file.sql(u"delete from StockList where StockID = 'B7'"_s);
    scan(u"CODE"_s);
    QCOMPARE(said(), u"The code CODE belongs to an item that is gone. Nothing was added."_s);
    saveItem(u"B7"_s, u"COFFEE"_s); // a free ID is given again
    scan(u"CODE"_s);
    QCOMPARE(said(), u"The code CODE belongs to an item that is gone. Nothing was added."_s);
    scan(u"B7"_s);
    QCOMPARE(m_counter->cart().last(), u"B7  |  COFFEE|1|4.00"_s);
}

void TillTest::codesThatCannotFollowAreTold()
{
    code(u"CODE"_s, u"A1"_s);
    m_counter->file.sql(u"update StockList set StockID = 'B7' where StockID = 'A1'"_s);
    m_counter->file.sql(
        u"create trigger refuse before update on HarrowbyCode begin select raise(abort, 'never'); end"_s);
    Q_EMIT harrowby::Counter::instance().stockSaved(u"A1"_s, u"B7"_s);
    QCOMPARE(m_failures.size(), 1);
    QVERIFY(m_failures.constFirst().kind == DbFailure::Kind::Write);
    QCOMPARE(m_failures.constFirst().reason, u"never"_s);
    scan(u"B7"_s);
    QCOMPARE(m_counter->cart(), QStringList{u"B7  |  TEA|1|2.50"_s});
}

void TillTest::emptyShopIsToldWhatToDoFirst()
{
    QCOMPARE(said(), QString());
    m_counter->file.sql(u"delete from StockList"_s);
    Q_EMIT harrowby::Counter::instance().stockDeleted(u"A1"_s);
    QCOMPARE(said(), u"1. Office, Catalogue: a list of items; or Settings, Add/Edit Stock. 2. Users."_s);
    m_counter->file.addItem(u"A1"_s, u"TEA"_s, 2.5, 30);
    Q_EMIT harrowby::Counter::instance().stockSaved({}, u"A1"_s);
    QCOMPARE(said(), QString());
    QCOMPARE(m_sounds, 0);
}

void TillTest::nextWindowGetsTheBanner()
{
    scan(u"nobody's"_s);
    m_counter->close();
    QCoreApplication::sendPostedEvents();
    scan(u"A1"_s); // no window
    m_counter->open();
    QCoreApplication::sendPostedEvents();
    const auto *label = m_counter->window().findChild<QLabel *>(u"hostBannerText"_s);
    QVERIFY(label && label->isVisible());
}

void TillTest::whatBecameOfTheCartStandsUntilItChanges()
{
    scan(u"A1"_s);
    scan(u"nobody's"_s); // which makes room for what comes after it
    QTimer::singleShot(0, this, [] {
        QTest::keyClick(QApplication::activeModalWidget()->findChild<QLineEdit *>(u"heldWord"_s), Qt::Key_Return);
    });
    m_counter->window().findChild<QPushButton *>(u"holdCart"_s)->click();
    QCoreApplication::sendPostedEvents();
    QCOMPARE(m_counter->cart(), QStringList());
    QCOMPARE(said(), u"Held as \"1\"."_s);
    m_counter->window().findChild<QPushButton *>(u"holdCart"_s)->click();
    QCOMPARE(said(), u"The cart is empty: there is nothing to hold."_s);
    scan(u"A1"_s);
    QCoreApplication::sendPostedEvents();
    QCOMPARE(said(), QString());
}

HARROWBY_TEST(app_till_test, TillTest)
#include "till_test.moc"
