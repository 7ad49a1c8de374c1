// SPDX-License-Identifier: MIT
#include "basic/result.h"

#include "tests/program/test_program.h"

#include <QString>
#include <QTest>

#include <memory>

using namespace harrowby;
using namespace Qt::StringLiterals;

class ResultTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void holdsAValue();
    void holdsAReason();
    void tellsThemApartWhenTheyAreOfOneType();
    void movesWhatCannotBeCopied();
    void hasAnotherValueInstead();
    void mayBeWithoutAValue();
};

namespace {

Result<int, QString> half(int number)
{
    if (number % 2 != 0)
        return Unexpected(u"odd"_s);
    return number / 2;
}

} // namespace

void ResultTest::holdsAValue()
{
    const auto result = half(8);
    QVERIFY(result);
    QVERIFY(result.has_value());
    QCOMPARE(*result, 4);
}

void ResultTest::holdsAReason()
{
    const auto result = half(7);
    QVERIFY(!result);
    QVERIFY(!result.has_value());
    QCOMPARE(result.error(), u"odd"_s);
}

void ResultTest::tellsThemApartWhenTheyAreOfOneType()
{
    const Result<QString, QString> good(u"text"_s);
    QVERIFY(good);
    QCOMPARE(good->size(), 4);
    const Result<QString, QString> bad(Unexpected(u"reason"_s));
    QVERIFY(!bad);
    QCOMPARE(bad.error(), u"reason"_s);
}

void ResultTest::movesWhatCannotBeCopied()
{
    Result<std::unique_ptr<int>, QString> result(std::make_unique<int>(5));
    const std::unique_ptr<int> taken = *std::move(result);
    QCOMPARE(*taken, 5);
    Result<int, std::unique_ptr<int>> failed(Unexpected(std::make_unique<int>(6)));
    const std::unique_ptr<int> reason = std::move(failed).error();
    QCOMPARE(*reason, 6);
}

void ResultTest::hasAnotherValueInstead()
{
    QCOMPARE(half(8).value_or(1), 4);
    QCOMPARE(half(7).value_or(1), 1);
}

void ResultTest::mayBeWithoutAValue()
{
    const Result<void, QString> done;
    QVERIFY(done);
    const Result<void, QString> failed = Unexpected(u"full"_s);
    QVERIFY(!failed);
    QCOMPARE(failed.error(), u"full"_s);
}

HARROWBY_CORE_TEST(result_test, ResultTest)
#include "result_test.moc"
