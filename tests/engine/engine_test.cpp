// SPDX-License-Identifier: MIT
#include "engine/database.h"
#include "engine/lost_files.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <sqlite3.h>

using namespace harrowby;
using namespace Qt::StringLiterals;

using Purpose = SqliteStatement::Purpose;

class EngineTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void valuesComeBackAsTheyWere_data();
    void valuesComeBackAsTheyWere();
    void valuesAreReadInAnotherForm();
    void aStatementServesItsPurposeOnly_data();
    void aStatementServesItsPurposeOnly();
    void theEndIsTheEnd();
    void aFailureIsKept();
    void aLostFileIsTheReason();
    void aNewFileIsItsOwnersAlone();
    void aFileThatCannotBeOpenedIsAnError();

private:
    SqliteDatabase m_database;
};

void EngineTest::init()
{
    auto opened = openDatabase(u":memory:"_s, OpenMode::Create);
    QVERIFY(opened);
    m_database = *std::move(opened);
    QVERIFY(!runSql(m_database.get(), u"CREATE TABLE Things (Name TEXT, Size)"_s));
}

void EngineTest::valuesComeBackAsTheyWere_data()
{
    QTest::addColumn<DbValue>("value");
    QTest::newRow("null") << DbValue();
    QTest::newRow("integer") << DbValue(std::int64_t{-9007199254740993});
    QTest::newRow("real") << DbValue(2.5);
    QTest::newRow("text") << DbValue(u"Tea \u20ac 'x'"_s);
    QTest::newRow("empty text") << DbValue(QString());
    QTest::newRow("text with a NUL") << DbValue(u"a\0b"_s);
    QTest::newRow("bytes") << DbValue(QByteArray("\0\xff", 2));
    QTest::newRow("no bytes") << DbValue(QByteArray());
}

void EngineTest::valuesComeBackAsTheyWere()
{
    QFETCH(DbValue, value);
    QVERIFY(!runSql(m_database.get(), u"INSERT INTO Things VALUES ('one', ?1)"_s, {value}));
    SqliteStatement reading(m_database.get(), u"SELECT Size FROM Things WHERE Name = ?1"_s, {u"one"_s});
    QVERIFY(reading.next());
    QVERIFY(reading.value(0) == value);
}

void EngineTest::valuesAreReadInAnotherForm()
{
    SqliteStatement reading(m_database.get(), u"SELECT 20, 2.5, '7 pieces', NULL"_s);
    QVERIFY(reading.next());
    QCOMPARE(reading.text(0), u"20"_s);
    QVERIFY(!reading.utf8(0));
    QCOMPARE(reading.text(1), u"2.5"_s);
    QCOMPARE(reading.number(1), 2);
    QCOMPARE(reading.utf8(2), QByteArrayView("7 pieces"));
    QCOMPARE(reading.number(2), 7);
    QCOMPARE(reading.text(3), QString());
    QCOMPARE(reading.number(3), 0);
    QCOMPARE(readText(m_database.get(), u"SELECT 20 + ?1"_s, {1}), u"21"_s);
}

void EngineTest::aStatementServesItsPurposeOnly_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("selects");
    QTest::addColumn<bool>("changes");
    QTest::addColumn<bool>("isAny");
    QTest::newRow("select") << u"Select * from Things"_s << true << false << true;
    QTest::newRow("change") << u"delete from Things ; "_s << false << true << true;
    QTest::newRow("pragma") << u"PRAGMA user_version = 1"_s << false << false << true;
    QTest::newRow("transaction") << u"BEGIN IMMEDIATE"_s << false << false << true;
    QTest::newRow("two") << u"SELECT 1; SELECT 2"_s << false << false << false;
    QTest::newRow("something after a NUL") << u"SELECT 1\0 x"_s << false << false << false;
}

void EngineTest::aStatementServesItsPurposeOnly()
{
    QFETCH(QString, text);
    QTEST(!SqliteStatement(m_database.get(), text, Purpose::Select).hasFailed(), "selects");
    QTEST(!SqliteStatement(m_database.get(), text, Purpose::Change).hasFailed(), "changes");
    QTEST(!SqliteStatement(m_database.get(), text).hasFailed(), "isAny");
}

void EngineTest::theEndIsTheEnd()
{
    SqliteStatement reading(m_database.get(), u"SELECT 1"_s);
    QVERIFY(reading.next());
    QVERIFY(!reading.next());
    QVERIFY(!reading.next());
    QVERIFY(!reading.error());
}

void EngineTest::aFailureIsKept()
{
    QVERIFY(!runSql(m_database.get(), u"CREATE UNIQUE INDEX OneName ON Things (Name)"_s));
    QVERIFY(!runSql(m_database.get(), u"INSERT INTO Things VALUES ('one', 1)"_s));
    SqliteStatement again(m_database.get(), u"INSERT INTO Things VALUES (?1, 2)"_s, {u"one"_s});
    QVERIFY(!again.hasFailed());
    QVERIFY(!again.next());
    QVERIFY(again.error());
    QCOMPARE(again.error()->code, SQLITE_CONSTRAINT);
    QCOMPARE(again.error()->reason, u"UNIQUE constraint failed: Things.Name"_s);
    QCOMPARE(again.extendedCode(), SQLITE_CONSTRAINT_UNIQUE);

    const auto missing = runSql(m_database.get(), u"SELECT * FROM Nowhere"_s);
    QVERIFY(missing);
    QCOMPARE(missing->code, SQLITE_ERROR);
    QCOMPARE(missing->reason, u"no such table: Nowhere"_s);

    const auto closed = runSql(nullptr, u"SELECT 1"_s);
    QVERIFY(closed);
    QCOMPARE(closed->code, 0);
    QCOMPARE(closed->reason, u"there is no open database"_s);
}

void EngineTest::aLostFileIsTheReason()
{
    const auto headline = u"The file is gone."_s;
    noteLoss(m_database.get(), headline);
    const auto error = runSql(m_database.get(), u"SELECT * FROM Nowhere"_s);
    QVERIFY(error);
    QCOMPARE(error->code, SQLITE_READONLY_DBMOVED);
    QCOMPARE(error->reason, headline);
    QVERIFY(!runSql(m_database.get(), u"SELECT * FROM Things"_s)); // a statement that works asks for no explanation

    forgetLoss(m_database.get());
    QCOMPARE(lossOf(m_database.get()), QString());
    QCOMPARE(runSql(m_database.get(), u"SELECT * FROM Nowhere"_s)->code, SQLITE_ERROR);
}

void EngineTest::aNewFileIsItsOwnersAlone()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"new.db"_s);
    QVERIFY(openDatabase(path, OpenMode::Create));
    QCOMPARE(QFile::permissions(path) & ~(QFile::ReadUser | QFile::WriteUser), QFile::ReadOwner | QFile::WriteOwner);
}

void EngineTest::aFileThatCannotBeOpenedIsAnError()
{
    const QTemporaryDir folder;
    const auto opened = openDatabase(folder.filePath(u"missing.db"_s), OpenMode::Write);
    QVERIFY(!opened);
    QCOMPARE(opened.error().code, SQLITE_CANTOPEN);
}

QTEST_GUILESS_MAIN(EngineTest)
#include "engine_test.moc"
