// SPDX-License-Identifier: MIT
#include "basic/numbers.h"

#include "tests/program/test_program.h"

#include <QLocale>
#include <QRandomGenerator>
#include <QTest>

#include <cmath>
#include <limits>

using namespace harrowby;
using namespace Qt::StringLiterals;

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

void textAndDouble()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("expected");
}

void doubleAndText()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("expected");
}

} // namespace

class TestNumbers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void readsLeadingNumber_data();
    void readsLeadingNumber();
    void removesCommasFirst();
    void tellsNumeric_data();
    void tellsNumeric();
    void readsWholeNumber_data();
    void readsWholeNumber();
    void convertsTo16Bits_data();
    void convertsTo16Bits();
    void refusesWhatDoesNotFit16Bits_data();
    void refusesWhatDoesNotFit16Bits();
    void writesShortestText_data();
    void writesShortestText();
    void writesShortestTextOfSingles_data();
    void writesShortestTextOfSingles();
    void storesSinglesAsTheirText_data();
    void storesSinglesAsTheirText();
    void formatsMoney_data();
    void formatsMoney();
    void formatsAnyHundredths();
    void formatsSingleMoney_data();
    void formatsSingleMoney();
    void formatsFixed_data();
    void formatsFixed();
    void formatsCount_data();
    void formatsCount();
    void survivesTheExtremes();
};

void TestNumbers::initTestCase()
{
    // The result must not depend on a locale with decimal commas.
    QLocale::setDefault(QLocale(QLocale::German));
}

void TestNumbers::readsLeadingNumber_data()
{
    textAndDouble();
    QTest::newRow("empty") << QString() << 0.0;
    QTest::newRow("blank") << u"   "_s << 0.0;
    QTest::newRow("integer") << u"12"_s << 12.0;
    QTest::newRow("text after") << u"12abc"_s << 12.0;
    QTest::newRow("text before") << u"abc12"_s << 0.0;
    QTest::newRow("leading blanks") << u"   7"_s << 7.0;
    QTest::newRow("blank inside ends it") << u"1 2"_s << 1.0;
    QTest::newRow("sign, exponent, text") << u" -3.5e2x"_s << -350.0;
    QTest::newRow("plus") << u"+4.25"_s << 4.25;
    QTest::newRow("lone plus") << u"+"_s << 0.0;
    QTest::newRow("lone minus") << u"-"_s << 0.0;
    QTest::newRow("two signs") << u"--5"_s << 0.0;
    QTest::newRow("blank after the sign") << u"- 5"_s << 0.0;
    QTest::newRow("point first") << u".5"_s << 0.5;
    QTest::newRow("point last") << u"5."_s << 5.0;
    QTest::newRow("two points") << u"1.2.3"_s << 1.2;
    QTest::newRow("sign and points") << u"-.5."_s << -0.5;
    QTest::newRow("lone point") << u"."_s << 0.0;
    QTest::newRow("point and exponent") << u".e5"_s << 0.0;
    QTest::newRow("comma ends it") << u"1,234"_s << 1.0;
    QTest::newRow("comma first") << u",5"_s << 0.0;
    QTest::newRow("lone exponent") << u"e5"_s << 0.0;
    QTest::newRow("exponent without digits") << u"1e"_s << 1.0;
    QTest::newRow("exponent with a sign only") << u"1e+"_s << 1.0;
    QTest::newRow("exponent with a plus") << u"1E+2"_s << 100.0;
    QTest::newRow("negative exponent") << u"25e-1"_s << 2.5;
    QTest::newRow("exponent overflow") << u"1e999"_s << 0.0;
    QTest::newRow("negative overflow") << u"-1e999"_s << 0.0;
    QTest::newRow("exponent underflow") << u"1e-999"_s << 0.0;
    QTest::newRow("largest") << u"1.7976931348623157e308"_s << std::numeric_limits<double>::max();
    QTest::newRow("hexadecimal is none") << u"0x10"_s << 0.0;
    QTest::newRow("infinity is none") << u"inf"_s << 0.0;
    QTest::newRow("nan is none") << u"nan"_s << 0.0;
    QTest::newRow("other digits are none") << u"\u0663"_s << 0.0;
    QTest::newRow("tab is no blank") << u"\t5"_s << 0.0;
    QTest::newRow("emoji after") << u"3\U0001F600"_s << 3.0;
    QTest::newRow("many digits") << u"123456789012345678901234567890"_s << 123456789012345678901234567890.0;
}

void TestNumbers::readsLeadingNumber()
{
    QFETCH(const QString, text);
    QFETCH(const double, expected);
    QCOMPARE(leadingNumber(text), expected);
}

void TestNumbers::removesCommasFirst()
{
    QCOMPARE(leadingNumberWithoutCommas(u"1,234.50"_s), 1234.5);
    QCOMPARE(leadingNumberWithoutCommas(u"1,2,3,4x"_s), 1234.0);
    QCOMPARE(leadingNumberWithoutCommas(u",5"_s), 5.0);
    QCOMPARE(leadingNumberWithoutCommas(u"1 234"_s), 1.0);
    QCOMPARE(leadingNumberWithoutCommas({}), 0.0);
}

void TestNumbers::tellsNumeric_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("expected");
    const auto yes = [](const char *text) { QTest::newRow(text) << QString::fromUtf8(text) << true; };
    const auto no = [](const char *text) { QTest::newRow(text) << QString::fromUtf8(text) << false; };
    for (const char *text :
         {"0",  "12",  " 12 ", "+12",  "-12", "1,234", "1,234,567.89", "1 234",   "1,,2", "1, 2",  "1 ,2",
          ".5", "-.5", "5.",   "1.50", "1e5", "1E+5",  "1e-5",         "1,000e3", ".5e1", "1e999", "007"})
        yes(text);
    for (const char *text : {"",      " ",    "+",    "-",   ".",   ",",    "-.",    "e5",    "1e",   "1e+",  "1.2.3",
                             "12abc", "abc",  "1e5x", "- 5", "--5", "5-",   "1.2,3", "1.2 3", "1 .5", "1e 5", ",5",
                             "5,",    "1,.5", "0x10", "inf", "nan", "1\t2", "\t1",   "$5",    "(5)",  "5%",   "\u0663"})
        no(text);
}

void TestNumbers::tellsNumeric()
{
    QFETCH(const QString, text);
    QFETCH(const bool, expected);
    QCOMPARE(isNumeric(text), expected);
}

void TestNumbers::readsWholeNumber_data()
{
    textAndDouble();
    QTest::newRow("integer") << u"5"_s << 5.0;
    QTest::newRow("surrounding blanks") << u"  5 "_s << 5.0;
    QTest::newRow("commas") << u"1,234"_s << 1234.0;
    QTest::newRow("blanks") << u"1 234.5"_s << 1234.5;
    QTest::newRow("both") << u"-1, 234"_s << -1234.0;
    QTest::newRow("plus") << u"+1e2"_s << 100.0;
    QTest::newRow("underflow") << u"1e-999"_s << 0.0;
    QTest::newRow("no number") << u"12abc"_s << std::nan("");
    QTest::newRow("empty") << QString() << std::nan("");
    QTest::newRow("overflow") << u"1e999"_s << std::nan("");
}

void TestNumbers::readsWholeNumber()
{
    QFETCH(const QString, text);
    QFETCH(const double, expected);
    const std::optional<double> number = wholeNumber(text);
    QCOMPARE(number.has_value(), !std::isnan(expected));
    if (number)
        QCOMPARE(*number, expected);
}

void TestNumbers::convertsTo16Bits_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<int>("expected");
    QTest::newRow("0") << 0.0 << 0;
    QTest::newRow("-0") << -0.0 << 0;
    QTest::newRow("0.5") << 0.5 << 0;
    QTest::newRow("1.5") << 1.5 << 2;
    QTest::newRow("2.5") << 2.5 << 2;
    QTest::newRow("3.5") << 3.5 << 4;
    QTest::newRow("-0.5") << -0.5 << 0;
    QTest::newRow("-1.5") << -1.5 << -2;
    QTest::newRow("-2.5") << -2.5 << -2;
    QTest::newRow("2.4999") << 2.4999 << 2;
    QTest::newRow("2.5001") << 2.5001 << 3;
    QTest::newRow("largest") << 32767.0 << 32767;
    QTest::newRow("just below half above") << 32767.4999 << 32767;
    QTest::newRow("smallest") << -32768.0 << -32768;
    QTest::newRow("half below") << -32768.5 << -32768;
}

void TestNumbers::convertsTo16Bits()
{
    QFETCH(const double, value);
    QFETCH(const int, expected);
    const std::optional<std::int16_t> converted = toInt16(value);
    QVERIFY(converted.has_value());
    QCOMPARE(static_cast<int>(*converted), expected);
}

void TestNumbers::refusesWhatDoesNotFit16Bits_data()
{
    QTest::addColumn<double>("value");
    QTest::newRow("half above") << 32767.5;
    QTest::newRow("above") << 32768.0;
    QTest::newRow("below") << -32768.5001;
    QTest::newRow("far above") << 1e300;
    QTest::newRow("infinity") << infinity;
    QTest::newRow("-infinity") << -infinity;
    QTest::newRow("nan") << std::nan("");
}

void TestNumbers::refusesWhatDoesNotFit16Bits()
{
    QFETCH(const double, value);
    QVERIFY(!toInt16(value).has_value());
}

void TestNumbers::writesShortestText_data()
{
    doubleAndText();
    QTest::newRow("0") << 0.0 << u"0"_s;
    QTest::newRow("-0") << -0.0 << u"0"_s;
    QTest::newRow("2") << 2.0 << u"2"_s;
    QTest::newRow("1250.5") << 1250.5 << u"1250.5"_s;
    QTest::newRow("0.1") << 0.1 << u"0.1"_s;
    QTest::newRow("-0.05") << -0.05 << u"-0.05"_s;
    QTest::newRow("1234567.25") << 1234567.25 << u"1234567.25"_s;
    QTest::newRow("0.1 + 0.2") << 0.1 + 0.2 << u"0.30000000000000004"_s;
    QTest::newRow("1e22") << 1e22 << u"10000000000000000000000"_s;
    QTest::newRow("1e23") << 1e23 << u"100000000000000000000000"_s;
    QTest::newRow("1e-7") << 1e-7 << u"0.0000001"_s;
    QTest::newRow("100") << 100.0 << u"100"_s;
    QTest::newRow("2^53 + 2") << 9007199254740994.0 << u"9007199254740994"_s;
}

void TestNumbers::writesShortestText()
{
    QFETCH(const double, value);
    QFETCH(const QString, expected);
    QCOMPARE(plainText(value), expected);
}

void TestNumbers::writesShortestTextOfSingles_data()
{
    QTest::addColumn<float>("value");
    QTest::addColumn<QString>("expected");
    QTest::newRow("0") << 0.0f << u"0"_s;
    QTest::newRow("99.99") << 99.99f << u"99.99"_s;
    QTest::newRow("0.1") << 0.1f << u"0.1"_s;
    QTest::newRow("-1.5") << -1.5f << u"-1.5"_s;
    QTest::newRow("16777216") << 16777216.0f << u"16777216"_s;
    QTest::newRow("1e10") << 1e10f << u"10000000000"_s;
    QTest::newRow("1e-10") << 1e-10f << u"0.0000000001"_s;
    QTest::newRow("largest") << std::numeric_limits<float>::max() << u"34028235"_s + QString(31, u'0');
}

void TestNumbers::writesShortestTextOfSingles()
{
    QFETCH(const float, value);
    QFETCH(const QString, expected);
    QCOMPARE(plainText(value), expected);
}

void TestNumbers::storesSinglesAsTheirText_data()
{
    QTest::addColumn<float>("value");
    QTest::addColumn<double>("expected");
    QTest::newRow("99.99") << 99.99f << 99.99;
    QTest::newRow("0.1") << 0.1f << 0.1;
    QTest::newRow("-7.3") << -7.3f << -7.3;
    QTest::newRow("3") << 3.0f << 3.0;
    QTest::newRow("0") << 0.0f << 0.0;
    QTest::newRow("largest") << std::numeric_limits<float>::max() << 3.4028235e38;
    QTest::newRow("infinity") << std::numeric_limits<float>::infinity() << infinity;
}

void TestNumbers::storesSinglesAsTheirText()
{
    QFETCH(const float, value);
    QFETCH(const double, expected);
    QVERIFY(asStored(value) == expected);
}

void TestNumbers::formatsMoney_data()
{
    doubleAndText();
    QTest::newRow("0") << 0.0 << u"0.00"_s;
    QTest::newRow("-0") << -0.0 << u"0.00"_s;
    QTest::newRow("1234.5") << 1234.5 << u"1,234.50"_s;
    QTest::newRow("1002.5") << 1002.5 << u"1,002.50"_s;
    QTest::newRow("1250") << 1250.0 << u"1,250.00"_s;
    QTest::newRow("1.005") << 1.005 << u"1.01"_s;
    QTest::newRow("2.675") << 2.675 << u"2.68"_s;
    QTest::newRow("1.0049") << 1.0049 << u"1.00"_s;
    QTest::newRow("-0.005") << -0.005 << u"-0.01"_s;
    QTest::newRow("-0.001") << -0.001 << u"0.00"_s;
    QTest::newRow("0.005") << 0.005 << u"0.01"_s;
    QTest::newRow("0.0049") << 0.0049 << u"0.00"_s;
    QTest::newRow("0.05") << 0.05 << u"0.05"_s;
    QTest::newRow("0.995") << 0.995 << u"1.00"_s;
    QTest::newRow("9.995") << 9.995 << u"10.00"_s;
    QTest::newRow("999.995") << 999.995 << u"1,000.00"_s;
    QTest::newRow("-999999.995") << -999999.995 << u"-1,000,000.00"_s;
    QTest::newRow("999") << 999.0 << u"999.00"_s;
    QTest::newRow("-999") << -999.0 << u"-999.00"_s;
    QTest::newRow("1e15") << 1e15 << u"1,000,000,000,000,000.00"_s;
}

void TestNumbers::formatsMoney()
{
    QFETCH(const double, value);
    QFETCH(const QString, expected);
    QCOMPARE(formatMoney(value), expected);
}

void TestNumbers::formatsAnyHundredths()
{
    // The text is made from whole numbers here; the last ones are too large for a double to hold hundredths.
    QRandomGenerator random(5);
    for (int i = 0; i < 100'000; ++i) {
        const qint64 hundredths = static_cast<qint64>(random.generate64() >> (8 + i % 56)) % 100'000'000'000'000;
        const QString units = QLocale(QLocale::English).toString(hundredths / 100);
        const QString expected = units + u'.' + QString::number(hundredths % 100).rightJustified(2, u'0');
        QCOMPARE(formatMoney(static_cast<double>(hundredths) / 100.0), expected);
        QCOMPARE(formatFixed(static_cast<double>(hundredths) / 100.0), QString(expected).remove(u','));
        if (hundredths > 0)
            QCOMPARE(formatMoney(-static_cast<double>(hundredths) / 100.0), u'-' + expected);
    }
}

void TestNumbers::formatsSingleMoney_data()
{
    QTest::addColumn<float>("value");
    QTest::addColumn<QString>("expected");
    QTest::newRow("99.99") << 99.99f << u"99.99"_s;
    QTest::newRow("99.995") << 99.995f << u"100.00"_s; // as a double it is 99.9949951171875
    QTest::newRow("1.005") << 1.005f << u"1.01"_s;
    QTest::newRow("1234.5") << 1234.5f << u"1,234.50"_s;
    QTest::newRow("-0.001") << -0.001f << u"0.00"_s;
}

void TestNumbers::formatsSingleMoney()
{
    QFETCH(const float, value);
    QFETCH(const QString, expected);
    QCOMPARE(formatMoney(value), expected);
}

void TestNumbers::formatsFixed_data()
{
    doubleAndText();
    QTest::newRow("1234.5") << 1234.5 << u"1234.50"_s;
    QTest::newRow("1.005") << 1.005 << u"1.01"_s;
    QTest::newRow("-1234567.891") << -1234567.891 << u"-1234567.89"_s;
    QTest::newRow("0") << 0.0 << u"0.00"_s;
}

void TestNumbers::formatsFixed()
{
    QFETCH(const double, value);
    QFETCH(const QString, expected);
    QCOMPARE(formatFixed(value), expected);
}

void TestNumbers::formatsCount_data()
{
    doubleAndText();
    QTest::newRow("0") << 0.0 << u"0"_s;
    QTest::newRow("12345") << 12345.0 << u"12,345"_s;
    QTest::newRow("0.5") << 0.5 << u"1"_s;
    QTest::newRow("0.4999") << 0.4999 << u"0"_s;
    QTest::newRow("-0.4") << -0.4 << u"0"_s;
    QTest::newRow("-2.5") << -2.5 << u"-3"_s;
    QTest::newRow("999.5") << 999.5 << u"1,000"_s;
    QTest::newRow("1234567") << 1234567.0 << u"1,234,567"_s;
}

void TestNumbers::formatsCount()
{
    QFETCH(const double, value);
    QFETCH(const QString, expected);
    QCOMPARE(formatCount(value), expected);
}

void TestNumbers::survivesTheExtremes()
{
    QCOMPARE(formatMoney(1e300).size(), 301 + 100 + 3);
    QVERIFY(formatMoney(1e300).startsWith(u"1,000,"));
    QCOMPARE(formatMoney(std::numeric_limits<double>::denorm_min()), u"0.00"_s);
    QCOMPARE(formatMoney(infinity), u"inf"_s);
    QCOMPARE(formatMoney(-infinity), u"-inf"_s);
    QCOMPARE(formatCount(std::nan("")), u"nan"_s);
    QCOMPARE(plainText(-infinity), u"-inf"_s);
    QCOMPARE(leadingNumber(plainText(std::numeric_limits<double>::denorm_min())),
             std::numeric_limits<double>::denorm_min());
    QVERIFY(leadingNumber(plainText(std::numeric_limits<double>::max())) == std::numeric_limits<double>::max());
}

HARROWBY_CORE_TEST(numbers_test, TestNumbers)
#include "numbers_test.moc"
