// SPDX-License-Identifier: MIT
#include "app/codes/code_text.h"
#include "app/codes/gtin.h"
#include "app/codes/in_store_rule.h"
#include "tests/program/test_program.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;

/// What codes are, without tables.
class CodeRulesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void checkDigits_data();
    void checkDigits();
    void spellings_data();
    void spellings();
    void codesAndWhatIsNone_data();
    void codesAndWhatIsNone();
    void shownCodes();
    void shopsOwnRange_data();
    void shopsOwnRange();
    void amountCheckDigits();
    void readings_data();
    void readings();
    void patternsThatAreNone_data();
    void patternsThatAreNone();
    void ruleAsText();
};

void CodeRulesTest::checkDigits_data()
{
    QTest::addColumn<QString>("code");
    QTest::addColumn<bool>("isRight");
    QTest::newRow("8") << u"96385074"_s << true;
    QTest::newRow("12") << u"036000291452"_s << true;
    QTest::newRow("13") << u"4006381333931"_s << true;
    QTest::newRow("14") << u"10012345678902"_s << true;
    QTest::newRow("digit wrong") << u"4006381333932"_s << false;
    QTest::newRow("two digits changed over") << u"4006381339331"_s << false;
    QTest::newRow("9 digits") << u"963850747"_s << false;
    QTest::newRow("no digits") << u"400638133393X"_s << false;
    QTest::newRow("other digits") << u"\u0664006381333931"_s << false;
    QTest::newRow("empty") << QString() << false;
}

void CodeRulesTest::checkDigits()
{
    QFETCH(QString, code);
    QFETCH(bool, isRight);
    QCOMPARE(isGtin(code), isRight);
}

void CodeRulesTest::spellings_data()
{
    QTest::addColumn<QString>("code");
    QTest::addColumn<QStringList>("spellings");
    const QStringList upc = {u"036000291452"_s, u"0036000291452"_s, u"00036000291452"_s};
    for (const QString &code : upc)
        QTest::newRow(qPrintable(code)) << code << upc;
    QTest::newRow("13") << u"4006381333931"_s << QStringList{u"4006381333931"_s, u"04006381333931"_s};
    QTest::newRow("14 without zeros") << u"10012345678902"_s << QStringList{u"10012345678902"_s};
    QTest::newRow("8") << u"96385074"_s
                       << QStringList{u"96385074"_s, u"000096385074"_s, u"0000096385074"_s, u"00000096385074"_s};
    QTest::newRow("own code of two digits") << u"90"_s << QStringList{};
    QTest::newRow("wrong digit") << u"4006381333932"_s << QStringList{};
    QTest::newRow("another length") << u"00096385074"_s << QStringList{};
}

void CodeRulesTest::spellings()
{
    QFETCH(QString, code);
    QFETCH(QStringList, spellings);
    QCOMPARE(gtinSpellings(code), spellings);
}

void CodeRulesTest::codesAndWhatIsNone_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("code");
    QTest::addColumn<QString>("problem");
    const auto good = [](const char *name, const QString &text, const QString &code) {
        QTest::newRow(name) << text << code << QString();
    };
    const auto bad = [](const char *name, const QString &text, const QString &problem) {
        QTest::newRow(name) << text << QString() << problem;
    };
    const QString unseen = u"it holds a character that cannot be seen"_s;
    good("digits", u"4006381333931"_s, u"4006381333931"_s);
    good("blanks around", u"  AB 12 "_s, u"AB 12"_s);
    good("quotes and patterns", u"a'b\"c%d*e_?"_s, u"a'b\"c%d*e_?"_s);
    good("other letters", u"\u00c4\u03a9\u0416\u4e2d"_s, u"\u00c4\u03a9\u0416\u4e2d"_s);
    good("beyond 16 bits", u"\U0001f9c0"_s, u"\U0001f9c0"_s);
    good("longest", QString(64, u'9'), QString(64, u'9'));
    bad("empty", {}, u"it is empty"_s);
    bad("blanks", u"   "_s, u"it is empty"_s);
    bad("too long", QString(65, u'9'), u"it is longer than 64 characters"_s);
    bad("ten thousand", QString(10000, u'9'), u"it is longer than 64 characters"_s);
    bad("NUL", u"12\u000034"_s, unseen);
    bad("tab", u"12\t34"_s, unseen);
    bad("line break", u"1234\n"_s, unseen);
    bad("right to left", u"12\u202e34"_s, unseen);
    bad("isolate", u"\u206612"_s, unseen);
    bad("no width", u"12\u200b34"_s, unseen);
    bad("half a character", u"12"_s + QChar(0xd83d), unseen);
    bad("line separator", u"12\u202834"_s, unseen);
}

void CodeRulesTest::codesAndWhatIsNone()
{
    QFETCH(QString, text);
    QFETCH(QString, code);
    QFETCH(QString, problem);
    const auto checked = checkCode(text);
    QCOMPARE(checked ? QString() : checked.error(), problem);
    if (checked)
        QCOMPARE(*checked, code);
}

void CodeRulesTest::shownCodes()
{
    QCOMPARE(shownCode(u"A 1"_s), u"A 1"_s);
    QCOMPARE(shownCode(u"a\u202eb\u0000c\td"_s), u"a\u00b7b\u00b7c\u00b7d"_s);
    QCOMPARE(shownCode(u"a"_s + QChar(0xd83d)), u"a\u00b7"_s);
    QCOMPARE(shownCode(QString(10000, u'9')), QString(40, u'9') + u'\u2026');
}

void CodeRulesTest::shopsOwnRange_data()
{
    QTest::addColumn<QString>("code");
    QTest::addColumn<QString>("whole");
    QTest::newRow("20") << u"2000000000008"_s << u"2000000000008"_s;
    QTest::newRow("29") << u"2912345012342"_s << u"2912345012342"_s;
    QTest::newRow("02") << u"0212345678909"_s << u"0212345678909"_s;
    QTest::newRow("12 digits") << u"212345678909"_s << u"0212345678909"_s;
    QTest::newRow("14 digits") << u"02912345012342"_s << u"2912345012342"_s;
    QTest::newRow("maker's") << u"4006381333931"_s << QString();
    QTest::newRow("wrong digit") << u"2912345012343"_s << QString();
    QTest::newRow("8 digits are a maker's") << u"21234567"_s << QString();
}

void CodeRulesTest::shopsOwnRange()
{
    QFETCH(QString, code);
    QFETCH(QString, whole);
    QCOMPARE(inStoreCode(code).value_or(QString()), whole);
}

void CodeRulesTest::amountCheckDigits()
{
    QCOMPARE(amountCheckDigit(u"2875"_s), 9); // the standard's own examples
    QCOMPARE(amountCheckDigit(u"14685"_s), 6);
    QCOMPARE(amountCheckDigit(u"0000"_s), 0);
    QCOMPARE(amountCheckDigit(u"00000"_s), 0);
}

void CodeRulesTest::readings_data()
{
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<int>("decimals");
    QTest::addColumn<QString>("digits"); // without the last one
    QTest::addColumn<QString>("read");
    const auto row = [](const char *name, const QString &pattern, int decimals, const QString &digits,
                        const QString &read) { QTest::newRow(name) << pattern << decimals << digits << read; };
    row("price", u"21IIIIIPPPPPC"_s, 2, u"211234501999"_s, u"12345 price 19.99"_s);
    row("whole price", u"21IIIIIPPPPPC"_s, 0, u"211234501999"_s, u"12345 price 1999"_s);
    row("weight", u"29IIIIIWWWWWC"_s, 3, u"290004201234"_s, u"00042 weight 1.234"_s);
    row("prefix of another", u"21IIIIIPPPPPC"_s, 2, u"221234501999"_s, QString());
    row("checked price of 4", u"20IIIIIVPPPPC"_s, 2, u"201234592875"_s, u"12345 price 28.75"_s);
    row("checked price is wrong", u"20IIIIIVPPPPC"_s, 2, u"201234582875"_s, QString());
    row("checked price of 5", u"02IIIIVPPPPPC"_s, 2, u"021234614685"_s, u"1234 price 146.85"_s);
    row("digit that stands there", u"239IIIIPPPPPC"_s, 2, u"239123401999"_s, u"1234 price 19.99"_s);
    row("digit that does not", u"239IIIIPPPPPC"_s, 2, u"238123401999"_s, QString());
    row("any digit", u"23.IIIIPPPPPC"_s, 2, u"238123401999"_s, u"1234 price 19.99"_s);
    row("price before the item", u"22PPPPPIIIIIC"_s, 2, u"220199900042"_s, u"00042 price 19.99"_s);
    row("no price inside", u"21IIIIIPPPPPC"_s, 2, u"211234500000"_s, QString());
    row("most", u"21IPPPPPPPPPC"_s, 2, u"217999999999"_s, u"7 price 9999999.99"_s);
}

void CodeRulesTest::readings()
{
    QFETCH(QString, pattern);
    QFETCH(int, decimals);
    QFETCH(QString, digits);
    QFETCH(QString, read);
    const auto rule = InStoreRule::fromPattern(pattern, decimals);
    QVERIFY2(rule, rule ? "" : qPrintable(rule.error()));
    const QString code = digits + QString::number(checkDigitOf(digits));
    const auto reading = rule->read(code);
    const QString words = reading ? u"%1 %2 %3"_s.arg(reading->itemNumber, reading->isWeight ? u"weight"_s : u"price"_s)
                                        .arg(reading->amount, 0, 'g', 12)
                                  : QString();
    QCOMPARE(words, read);
    const QString wrong = digits + QString::number((checkDigitOf(digits) + 1) % 10);
    QVERIFY(!rule->read(wrong)); // a misread code is never a price
}

void CodeRulesTest::patternsThatAreNone_data()
{
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<int>("decimals");
    QTest::addColumn<QString>("problem");
    const auto row = [](const char *name, const QString &pattern, int decimals, const QString &problem) {
        QTest::newRow(name) << pattern << decimals << problem;
    };
    row("short", u"21IIIIPPPPPC"_s, 2, u"A pattern has 13 signs."_s);
    row("prefix", u"40IIIIIPPPPPC"_s, 2, u"A pattern begins with 02, or with 20 to 29."_s);
    row("end", u"21IIIIIPPPPPP"_s, 2, u"A pattern ends with C, the check digit."_s);
    row("two ends", u"21IIIICPPPPPC"_s, 2, u"A pattern ends with C, the check digit."_s);
    row("letters", u"21IIIIIPPPPXC"_s, 2, u"A pattern holds digits, I, P, W, V, C and points only."_s);
    row("no item", u"2100000PPPPPC"_s, 2, u"The item's number, I, must stand in one piece."_s);
    row("item in two", u"21IIPPPPPIIIC"_s, 2, u"The item's number, I, must stand in one piece."_s);
    row("no amount", u"21IIIII00000C"_s, 2, u"Either a price, P, or a weight, W, must stand in one piece."_s);
    row("both", u"21IIIIIPPWWWC"_s, 2, u"Either a price, P, or a weight, W, must stand in one piece."_s);
    row("price in two", u"21IIIIPP0PPPC"_s, 2, u"Either a price, P, or a weight, W, must stand in one piece."_s);
    row("checks 3", u"21IIIIIIVPPPC"_s, 2, u"V checks a price or a weight of 4 or 5 digits."_s);
    row("two checks", u"21IIIIVVPPPPC"_s, 2, u"V checks a price or a weight of 4 or 5 digits."_s);
    row("three decimals", u"21IIIIIPPPPPC"_s, 3, u"A price has at most 2 decimals."_s);
    row("five decimals", u"21IIIIIWWWWWC"_s, 5, u"A weight has at most 4 decimals."_s);
    row("minus", u"21IIIIIWWWWWC"_s, -1, u"A weight has at most 4 decimals."_s);
}

void CodeRulesTest::patternsThatAreNone()
{
    QFETCH(QString, pattern);
    QFETCH(int, decimals);
    QFETCH(QString, problem);
    const auto rule = InStoreRule::fromPattern(pattern, decimals);
    QVERIFY(!rule);
    QCOMPARE(rule.error(), problem);
}

void CodeRulesTest::ruleAsText()
{
    const auto rule = InStoreRule::fromText(u"29IIIIIWWWWWC 3"_s);
    QVERIFY(rule);
    QCOMPARE(rule->text(), u"29IIIIIWWWWWC 3"_s);
    QCOMPARE(rule->prefix(), u"29"_s);
    for (const QString &none : {QString(), u"off"_s, u"29IIIIIWWWWWC"_s, u"29IIIIIWWWWWC x"_s, u"29IIIIIWWWWWC 33"_s})
        QVERIFY(!InStoreRule::fromText(none));
}

HARROWBY_CORE_TEST(app_code_rules_test, CodeRulesTest)
#include "code_rules_test.moc"
