// SPDX-License-Identifier: MIT
#include "basic/values.h"

#include "tests/program/test_program.h"

#include <QTest>

#include <limits>

using namespace harrowby;
using namespace Qt::StringLiterals;

namespace {

constexpr int none = 1 << 20;

DbValue null()
{
    return {};
}

DbValue integer(std::int64_t value)
{
    return value;
}

DbValue text(const QString &value)
{
    return value;
}

DbValue bytes(const QByteArray &value)
{
    return value;
}

} // namespace

class TestValues : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void reads_data();
    void reads();
    void storesFigures();
};

void TestValues::reads_data()
{
    QTest::addColumn<DbValue>("value");
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("number");
    QTest::addColumn<int>("int16"); // `none` when there is none
    QTest::addColumn<bool>("isTrue");
    QTest::addColumn<bool>("equalsTrue");

    QTest::newRow("null") << null() << QString() << 0.0 << 0 << false << false;
    QTest::newRow("0") << integer(0) << u"0"_s << 0.0 << 0 << false << false;
    QTest::newRow("1") << integer(1) << u"1"_s << 1.0 << 1 << true << false;
    QTest::newRow("-1") << integer(-1) << u"-1"_s << -1.0 << -1 << true << true;
    QTest::newRow("40000") << integer(40000) << u"40000"_s << 40000.0 << none << true << false;
    QTest::newRow("largest") << integer(std::numeric_limits<std::int64_t>::max()) << u"9223372036854775807"_s
                             << 9223372036854775807.0 << none << true << false;
    QTest::newRow("5.0") << DbValue(5.0) << u"5"_s << 5.0 << 5 << true << false;
    QTest::newRow("-1.0") << DbValue(-1.0) << u"-1"_s << -1.0 << -1 << true << true;
    QTest::newRow("2.5") << DbValue(2.5) << u"2.5"_s << 2.5 << 2 << true << false;
    QTest::newRow("0.25") << DbValue(0.25) << u"0.25"_s << 0.25 << 0 << true << false;
    QTest::newRow("99.99") << DbValue(99.99) << u"99.99"_s << 99.99 << 100 << true << false;
    QTest::newRow("text 12") << text(u"12"_s) << u"12"_s << 12.0 << 12 << true << false;
    QTest::newRow("text 1,234") << text(u"1,234"_s) << u"1,234"_s << 1.0 << 1234 << true << false;
    QTest::newRow("text 12abc") << text(u"12abc"_s) << u"12abc"_s << 12.0 << none << false << false;
    QTest::newRow("text 0") << text(u"0"_s) << u"0"_s << 0.0 << 0 << false << false;
    QTest::newRow("text -1") << text(u"-1"_s) << u"-1"_s << -1.0 << -1 << true << true;
    QTest::newRow("text 40000") << text(u"40000"_s) << u"40000"_s << 40000.0 << none << true << false;
    QTest::newRow("text True") << text(u"True"_s) << u"True"_s << 0.0 << -1 << true << true;
    QTest::newRow("text False") << text(u"False"_s) << u"False"_s << 0.0 << 0 << false << false;
    QTest::newRow("text Yes") << text(u"Yes"_s) << u"Yes"_s << 0.0 << none << false << false;
    QTest::newRow("empty text") << text(QString()) << QString() << 0.0 << none << false << false;
    QTest::newRow("bytes") << bytes("caf\xc3\xa9") << u"café"_s << 0.0 << none << false << false;
    QTest::newRow("bytes 12x") << bytes("12x") << u"12x"_s << 12.0 << none << false << false;
    QTest::newRow("bytes 1") << bytes("1") << u"1"_s << 1.0 << none << false << false;
    QTest::newRow("emoji") << text(u"\U0001F34E"_s) << u"\U0001F34E"_s << 0.0 << none << false << false;
}

void TestValues::reads()
{
    QFETCH(const DbValue, value);
    QFETCH(const int, int16);
    QTEST(valueText(value), "text");
    QTEST(valueNumber(value), "number");
    QTEST(valueIsTrue(value), "isTrue");
    QTEST(valueEqualsTrue(value), "equalsTrue");
    const std::optional<std::int16_t> converted = valueInt16(value);
    QCOMPARE(converted ? static_cast<int>(*converted) : none, int16);
}

void TestValues::storesFigures()
{
    QCOMPARE(std::get<std::int64_t>(storedFigure(2.0F)), static_cast<std::int64_t>(2));
    QCOMPARE(std::get<std::int64_t>(storedFigure(-16777216.0F)), static_cast<std::int64_t>(-16777216));
    QCOMPARE(std::get<double>(storedFigure(99.99F)), 99.99);
    QCOMPARE(std::get<double>(storedFigure(1e30F)), 1e30);
}

HARROWBY_CORE_TEST(values_test, TestValues)
#include "values_test.moc"
