// SPDX-License-Identifier: MIT
#include "app/cash/amount_entry.h"
#include "app/cash/cash_choices.h"
#include "app/cash/cash_words.h"
#include "app/cash/tender.h"
#include "app/records/shop_settings.h"
#include "app/records/sqlite_records.h"
#include "tests/app/store_files.h"
#include "tests/program/test_program.h"

#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;
using namespace harrowby::app::test;

namespace {

/// Types the keys; "<" takes one back.
AmountEntry keyed(const QString &keys)
{
    AmountEntry entry;
    for (const QChar key : keys) {
        if (key == u'<')
            entry.erase();
        else
            entry.type(key);
    }
    return entry;
}

QString wordsOf(const QList<PaymentPart> &parts)
{
    QStringList words;
    for (const PaymentPart &part : parts)
        words << u"%1 %2 %3"_s.arg(part.way).arg(part.amount).arg(part.given);
    return words.join(u", "_s);
}

} // namespace

/// What is keyed in, the change, and which ways and notes a shop can list.
class CashRulesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void amountIsKeyedIn_data();
    void amountIsKeyedIn();
    void otherKeysAreNone();
    void change_data();
    void change();
    void notesAddUp();
    void digitAfterANoteBeginsAnew();
    void oneWayPaysAll();
    void twoWaysPayTogether();
    void chargeIsNeverMoreThanIsDue();
    void chargeIsTakenBack();
    void negativeSumIsGivenBack();
    void waysAreRead_data();
    void waysAreRead();
    void notesAreRead_data();
    void notesAreRead();
    void choicesAreKept();
    void wordsSayHow();
};

void CashRulesTest::amountIsKeyedIn_data()
{
    QTest::addColumn<QString>("keys");
    QTest::addColumn<Cents>("cents");
    const auto row = [](const QString &keys, Cents cents) { QTest::addRow("%s", qPrintable(keys)) << keys << cents; };
    QTest::newRow("nothing") << QString() << Cents{0};
    row(u"5"_s, 5);
    row(u"1250"_s, 1250);
    row(u"2000"_s, 2000);
    row(u"0020"_s, 20);
    row(u"20."_s, 2000);
    row(u"20,"_s, 2000);
    row(u"12.5"_s, 1250);
    row(u"12,50"_s, 1250);
    row(u"12.505"_s, 1250); // no third decimal
    row(u"12..5"_s, 1250);
    row(u"12.5,0"_s, 1250);
    row(u".5"_s, 50);
    row(u"0.05"_s, 5);
    row(u"1250<"_s, 125);
    row(u"12.5<"_s, 1200);
    row(u"12.5<<"_s, 12);
    row(u"12.5<<0"_s, 120);
    row(u"<<"_s, 0);
    row(u"5<<7"_s, 7);
    row(u"123456789012"_s, 123'456'789'012);
    row(u"1234567890123"_s, 123'456'789'012);
    row(u"123456789012.99"_s, 12'345'678'901'299);
}

void CashRulesTest::amountIsKeyedIn()
{
    QFETCH(const QString, keys);
    QTEST(keyed(keys).cents(), "cents");
}

void CashRulesTest::otherKeysAreNone()
{
    AmountEntry entry;
    for (const QChar key : u"x -+eE\u0663\r\t"_s)
        QVERIFY(!entry.type(key));
    QVERIFY(entry.isEmpty());
    QVERIFY(entry.type(u'0') && entry.isEmpty());
    QVERIFY(entry.type(u'.') && !entry.isEmpty());
    entry.clear();
    QVERIFY(entry.isEmpty());
}

void CashRulesTest::change_data()
{
    QTest::addColumn<Cents>("total");
    QTest::addColumn<QString>("keys");
    QTest::addColumn<bool>("isEnough");
    QTest::addColumn<Cents>("change");
    QTest::newRow("nothing given") << Cents{1250} << QString() << false << Cents{-1250};
    QTest::newRow("a cent too little") << Cents{1250} << u"1249"_s << false << Cents{-1};
    QTest::newRow("just enough") << Cents{1250} << u"1250"_s << true << Cents{0};
    QTest::newRow("more") << Cents{1250} << u"2000"_s << true << Cents{750};
    QTest::newRow("nothing to pay") << Cents{0} << QString() << true << Cents{0};
    QTest::newRow("large") << Cents{9'007'199'254'740'991} << u"123456789012.99"_s << false
                           << Cents{12'345'678'901'299 - 9'007'199'254'740'991};
}

void CashRulesTest::change()
{
    QFETCH(const Cents, total);
    QFETCH(const QString, keys);
    Tender tender(total);
    for (const QChar key : keys)
        QVERIFY(tender.type(key));
    QTEST(tender.isEnough(), "isEnough");
    QTEST(tender.change(), "change");
}

void CashRulesTest::notesAddUp()
{
    Tender tender(3750);
    tender.addNote(2000);
    QCOMPARE(tender.given(), 2000);
    tender.addNote(2000);
    QCOMPARE(tender.change(), 250);
    tender.erase();
    QCOMPARE(tender.given(), 2000);
    tender.giveExactly();
    QCOMPARE(tender.given(), 3750);
    QCOMPARE(tender.change(), 0);
    tender.clear();
    QCOMPARE(tender.given(), 0);
    // coins first, then a note
    tender.type(u'5');
    tender.type(u'0');
    tender.addNote(2000);
    QCOMPARE(tender.given(), 2050);
    QCOMPARE(wordsOf(tender.parts()), u"Cash 3750 2050"_s);
}

void CashRulesTest::digitAfterANoteBeginsAnew()
{
    Tender tender(1250);
    tender.addNote(2000);
    QVERIFY(!tender.type(u'x'));
    QCOMPARE(tender.given(), 2000);
    QVERIFY(tender.type(u'7'));
    QCOMPARE(tender.given(), 7);
}

void CashRulesTest::oneWayPaysAll()
{
    Tender tender(1250);
    QCOMPARE(tender.charge(u"Card"_s), Tender::Charged::Done);
    QVERIFY(tender.isEnough());
    QCOMPARE(tender.change(), 0);
    QCOMPARE(wordsOf(tender.parts()), u"Card 1250 1250"_s);
    QVERIFY(addUp(tender.parts(), 1250));
    QCOMPARE(tender.charge(u"Card"_s), Tender::Charged::NothingDue);
    // what is handed over all the same goes back
    tender.addNote(500);
    QCOMPARE(tender.change(), 500);
    QCOMPARE(wordsOf(tender.parts()), u"Card 1250 1250, Cash 0 500"_s);
    QVERIFY(addUp(tender.parts(), 1250));
}

void CashRulesTest::twoWaysPayTogether()
{
    Tender tender(1250);
    for (const QChar key : u"5."_s)
        tender.type(key);
    QCOMPARE(tender.charge(u"Card"_s), Tender::Charged::Done);
    QCOMPARE(tender.due(), 750);
    QCOMPARE(tender.given(), 0);
    QVERIFY(!tender.isEnough());
    tender.addNote(1000);
    QCOMPARE(tender.change(), 250);
    QCOMPARE(wordsOf(tender.parts()), u"Card 500 500, Cash 750 1000"_s);
    QVERIFY(addUp(tender.parts(), 1250));
}

void CashRulesTest::chargeIsNeverMoreThanIsDue()
{
    Tender tender(1250);
    tender.addNote(2000);
    QCOMPARE(tender.charge(u"Card"_s), Tender::Charged::TooMuch);
    QCOMPARE(tender.given(), 2000);
    for (const QChar key : u"1251"_s)
        tender.type(key);
    QCOMPARE(tender.charge(u"Card"_s), Tender::Charged::TooMuch);
    QVERIFY(tender.charged().isEmpty());
    tender.erase();
    tender.type(u'0');
    QCOMPARE(tender.charge(u"Card"_s), Tender::Charged::Done);
    QCOMPARE(tender.due(), 0);
}

void CashRulesTest::chargeIsTakenBack()
{
    Tender tender(1250);
    tender.takeBack();
    tender.addNote(500);
    QCOMPARE(tender.charge(u"Card"_s), Tender::Charged::Done);
    QCOMPARE(tender.charge(u"Voucher"_s), Tender::Charged::Done);
    QCOMPARE(wordsOf(tender.charged()), u"Card 500 500, Voucher 750 750"_s);
    tender.takeBack();
    QCOMPARE(tender.due(), 750);
    tender.takeBack();
    QCOMPARE(tender.due(), 1250);
}

/// A line's cost can be changed to less than nothing.
void CashRulesTest::negativeSumIsGivenBack()
{
    Tender tender(-500);
    QVERIFY(tender.isEnough());
    QCOMPARE(tender.change(), 500);
    QCOMPARE(tender.charge(u"Card"_s), Tender::Charged::NothingDue);
    QCOMPARE(wordsOf(tender.parts()), u"Cash -500 0"_s);
    QVERIFY(addUp(tender.parts(), -500));
}

void CashRulesTest::waysAreRead_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("read");
    QTest::newRow("one") << u"Card"_s << u"Card"_s;
    QTest::newRow("several") << u" Card ,Gift  Voucher,, Account "_s << u"Card, Gift Voucher, Account"_s;
    QTest::newRow("none") << u" , "_s << QString();
    QTest::newRow("sign") << u"M & M"_s << u"M & M"_s;
    QTest::newRow("cash") << u"Card, CASH"_s << u"! \"CASH\" is there already."_s;
    QTest::newRow("twice") << u"Card, card"_s << u"! \"card\" is there already."_s;
    QTest::newRow("long") << QString(15, u'x')
                          << u"! \"%1\" is too long: at most 14 characters."_s.arg(QString(15, u'x'));
    QTest::newRow("many") << u"a,b,c,d,e,f,g"_s << u"! At most 6 ways can be listed."_s;
    QTest::newRow("direction") << u"Ca\u202erd"_s << u"! \"Ca\u202erd\" holds a sign that cannot be shown."_s;
}

void CashRulesTest::waysAreRead()
{
    QFETCH(const QString, typed);
    const auto ways = readWays(typed);
    QTEST(ways ? waysText(*ways) : u"! "_s + ways.error(), "read");
}

void CashRulesTest::notesAreRead_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("read");
    QTest::newRow("blanks") << u" 20 5  10 "_s << u"5 10 20"_s;
    QTest::newRow("commas") << u"5, 10,20;50"_s << u"5 10 20 50"_s;
    QTest::newRow("coins") << u"0.5 2.50 1"_s << u"0.50 1 2.50"_s;
    QTest::newRow("twice") << u"5 5.0 5.00"_s << u"5"_s;
    QTest::newRow("none") << QString() << QString();
    const auto refused = [](const char *name, const QString &typed, const QString &part) {
        QTest::newRow(name) << typed << u"! \"%1\" is no note. Write them as 5 10 20 or 0.50."_s.arg(part);
    };
    refused("nothing", u"5 0"_s, u"0"_s);
    refused("thousands", u"1,000"_s, u"000"_s);
    refused("words", u"5 ten"_s, u"ten"_s);
    refused("negative", u"-5"_s, u"-5"_s);
    refused("three decimals", u"0.505"_s, u"0.505"_s);
    refused("huge", u"12345678"_s, u"12345678"_s);
    QTest::newRow("many") << u"1 2 3 4 5 6 7 8 9"_s << u"! At most 8 notes can be listed."_s;
}

void CashRulesTest::notesAreRead()
{
    QFETCH(const QString, typed);
    const auto notes = readNotes(typed);
    QTEST(notes ? notesText(*notes) : u"! "_s + notes.error(), "read");
}

void CashRulesTest::choicesAreKept()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"shop.sqlite"_s);
    makeStore(path);
    SqliteDatabase database;
    QVERIFY(!into(database, openDatabase(path, OpenMode::Write)));
    SqliteRecords records(database.get());
    QCOMPARE(readCashChoices(records), (CashChoices{{u"Card"_s}, {500, 1000, 2000, 5000, 10000}}));
    const CashChoices choices{{u"Card"_s, u"O'Neil"_s}, {50, 200}};
    const SignedDeeds deeds(records, officePlace, u"ANNA"_s);
    QVERIFY(changeCashChoices(deeds, readCashChoices(records), choices).value_or(false));
    QCOMPARE(readCashChoices(records), choices);
    QVERIFY(changeCashChoices(deeds, choices, {}).value_or(false));
    QCOMPARE(readCashChoices(records), CashChoices());
    // what another program has written and cannot be read
    QVERIFY(!ShopSettings(records).save(u"CashNotes"_s, u"five"_s));
    QCOMPARE(readCashChoices(records).notes.size(), 5);
}

void CashRulesTest::wordsSayHow()
{
    const QList<PaymentPart> cash = {{cashWay(), 1250, 2000}};
    const QList<PaymentPart> both = {{cardWay(), 500, 500}, {cashWay(), 123'450, 200'000}};
    const QList<PaymentPart> card = {{cardWay(), 500, 500}};
    QCOMPARE(paidWords(cash, 750), u"Change: 7.50"_s);
    QCOMPARE(paidWords(both, 76'550), u"Change: 765.50"_s);
    QCOMPARE(paidWords(card, 0), u"Paid: Card 5.00"_s);
    QCOMPARE(tenderWords(both), u"Card 5.00, Cash 1,234.50 (2,000.00 given)"_s);
    QCOMPARE(givenBackWords(1250, {}), u"Give back: 12.50"_s);
    QCOMPARE(givenBackWords(0, card), u"Give back: Card 5.00"_s);
    QCOMPARE(givenBackWords(750, card), u"Give back: 7.50, Card 5.00"_s);
    QCOMPARE(givenBackWords(0, {}), QString());
}

HARROWBY_CORE_TEST(app_cash_rules_test, CashRulesTest)
#include "cash_rules_test.moc"
