// SPDX-License-Identifier: MIT
#include "app/office/wrong_tries.h"
#include "app/shop/store_access.h"
#include "app/shop/store_paths.h"
#include "tests/program/test_program.h"

#include <QDateTime>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace harrowby::app;
using namespace std::chrono_literals;

class WrongTriesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void wrongTriesSlowDown();
    void wrongTriesOutliveARestart();
    void officesShareOnePause();
    void clockThatJumpsLocksNobodyOut();
    void spoiltMemoryLocksNobodyOut_data();
    void spoiltMemoryLocksNobodyOut();
    void eachStoreHasItsOwnTries();
};

namespace {

const QDateTime noon(QDate(2026, 11, 21), QTime(12, 0), Qt::UTC);

} // namespace

void WrongTriesTest::wrongTriesSlowDown()
{
    QCOMPARE(pauseAfter(0), 0ms);
    QCOMPARE(pauseAfter(2), 0ms);
    QCOMPARE(pauseAfter(3), 1000ms);
    QCOMPARE(pauseAfter(5), 4000ms);
    QCOMPARE(pauseAfter(7), 16000ms);
    QCOMPARE(pauseAfter(1000000), 16000ms);
}

void WrongTriesTest::wrongTriesOutliveARestart()
{
    const QTemporaryDir folder;
    const QString file = folder.filePath(u"deep/tries"_s);
    {
        WrongTries tries(file);
        for (int i = 0; i < 4; ++i)
            tries.add(noon);
        QCOMPARE(tries.pause(noon), 2000ms);
    }
    QCOMPARE(permissionsText(file), u"0600"_s);
    WrongTries later(file);
    QCOMPARE(later.pause(noon.addMSecs(500)), 1500ms);
    QCOMPARE(later.pause(noon.addSecs(2)), 0ms);
    later.add(noon.addSecs(60)); // the fifth in a row
    QCOMPARE(WrongTries(file).pause(noon.addSecs(60)), 4000ms);
    later.forget();
    QVERIFY(!QFile::exists(file));
    QCOMPARE(WrongTries(file).pause(noon.addSecs(60)), 0ms);
}

void WrongTriesTest::officesShareOnePause()
{
    const QTemporaryDir folder;
    const QString file = folder.filePath(u"tries"_s);
    WrongTries one(file);
    WrongTries other(file);
    one.add(noon);
    other.add(noon);
    one.add(noon);
    QCOMPARE(other.pause(noon), 1000ms);
    WrongTries alone;
    alone.add(noon);
    QCOMPARE(alone.pause(noon), 0ms);
}

void WrongTriesTest::clockThatJumpsLocksNobodyOut()
{
    const QTemporaryDir folder;
    const QString file = folder.filePath(u"tries"_s);
    for (int i = 0; i < 10; ++i)
        WrongTries(file).add(noon.addYears(20));
    QCOMPARE(WrongTries(file).pause(noon), 16000ms);
    QCOMPARE(WrongTries(file).pause(noon.addSecs(10)), 6000ms);
    QCOMPARE(WrongTries(file).pause(noon.addSecs(16)), 0ms);
    const auto write = [&](const QByteArray &bytes) {
        QFile memory(file);
        return memory.open(QIODevice::WriteOnly) && memory.write(bytes) == bytes.size();
    };
    QVERIFY(write("12 -9223372036854775808\n"));
    QCOMPARE(WrongTries(file).pause(noon), 0ms);
    QVERIFY(write("12 9223372036854775807\n"));
    QCOMPARE(WrongTries(file).pause(noon), 16000ms);
    QCOMPARE(WrongTries(file).pause(noon.addSecs(16)), 0ms);
}

void WrongTriesTest::spoiltMemoryLocksNobodyOut_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("words") << QByteArray("no numbers");
    QTest::newRow("one number") << QByteArray("12");
    QTest::newRow("too many") << QByteArray("12 13 14");
    QTest::newRow("negative") << QByteArray("-12 1000");
    QTest::newRow("too large") << QByteArray("12 99999999999999999999999");
    QTest::newRow("long") << QByteArray(5'000'000, '1');
    QTest::newRow("zeroes") << QByteArray(20, '\0');
}

void WrongTriesTest::spoiltMemoryLocksNobodyOut()
{
    QFETCH(QByteArray, bytes);
    const QTemporaryDir folder;
    QFile file(folder.filePath(u"tries"_s));
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    file.close();
    WrongTries tries(file.fileName());
    QCOMPARE(tries.pause(noon), 0ms);
    tries.add(noon);
    tries.add(noon);
    QCOMPARE(tries.pause(noon), 0ms);
    tries.add(noon);
    QCOMPARE(WrongTries(file.fileName()).pause(noon), 1000ms);
}

void WrongTriesTest::eachStoreHasItsOwnTries()
{
    const QTemporaryDir folder;
    for (const QString &name : {u"one"_s, u"other"_s})
        QVERIFY(QFile(folder.filePath(name)).open(QIODevice::WriteOnly));
    QVERIFY(QFile::link(folder.filePath(u"one"_s), folder.filePath(u"link"_s)));
    QVERIFY(officeTriesPath(folder.filePath(u"one"_s)) != officeTriesPath(folder.filePath(u"other"_s)));
    QCOMPARE(officeTriesPath(folder.filePath(u"one"_s)), officeTriesPath(folder.filePath(u"link"_s)));
}

HARROWBY_TEST(app_wrong_tries_test, WrongTriesTest)
#include "wrong_tries_test.moc"
