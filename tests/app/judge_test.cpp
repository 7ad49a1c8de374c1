// SPDX-License-Identifier: MIT
#include "busy_wait.h"
#include "file_facts.h"
#include "schema.h"
#include "store_create.h"
#include "store_files.h"
#include "store_judge.h"
#include "store_open.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>

#include <functional>

using namespace Qt::StringLiterals;
using namespace harrowby::app;
using namespace harrowby::app::test;

using Prepare = std::function<void(const QString &)>;
Q_DECLARE_METATYPE(Prepare)

namespace {

using namespace std::chrono_literals;

const std::chrono::milliseconds shortWait = 60ms;

void writeFile(const QString &path, const QByteArray &content)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content), content.size());
}

/// Drops a table, and leaves the change in the log.
void makeLoggedLack(const QString &path)
{
    const QString other = path + u".live"_s;
    makeStore(other);
    Database live;
    QVERIFY(!openDatabase(other, OpenMode::Write, live));
    QVERIFY(!runSql(live.get(), u"DROP TABLE SysUsage"_s));
    copyAsAfterCrash(other, path);
    QVERIFY(QFile(logFileOf(path)).size() > 0);
}

Prepare dropping(const QString &statement)
{
    return [statement](const QString &path) {
        makeStore(path);
        runAll(path, {statement});
    };
}

Prepare dropColumn(const QString &table, const QString &renamed)
{
    return dropping(u"ALTER TABLE %1 RENAME COLUMN %2 TO Other"_s.arg(table, renamed));
}

} // namespace

class JudgeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        QVERIFY(m_folder->isValid());
        // So that one who has dropped his rights can look into it.
        QCOMPARE(::chmod(QFile::encodeName(m_folder->path()).constData(), 0755), 0);
    }

    void refusedFilesStayAsTheyWere_data();
    void refusedFilesStayAsTheyWere();
    void everyTableAndColumnIsMissed_data();
    void everyTableAndColumnIsMissed();
    void goodFileIsOpenedAndUntouchedByJudging();
    void cleanStoreIsJudgedWithoutNewFiles();
    void folderInsteadOfFile();
    void linkToNothing();
    void readOnlyFile();
    void readOnlyLog();
    void unreadableFile();
    void folderThatCannotBeWritten();
    void rowsThatBreakARuleAreNoDamage();
    void checkOfABigFileIsBounded();
    void linkedStoreIsJudgedWhereItLies();

private:
    QString path(const QString &name = u"shop.sqlite"_s) const { return m_folder->filePath(name); }
    std::optional<StoreProblem> judge(const QString &file)
    {
        BusyWait wait(shortWait);
        return judgeStore(file, wait);
    }
    void verifyRefused(const QString &file, ProblemKind kind)
    {
        const auto problem = judge(file);
        QVERIFY(problem);
        QVERIFY2(problem->kind == kind, qPrintable(problem->text));
        QVERIFY2(problem->text.contains(file), qPrintable(problem->text));
        QVERIFY2(problem->text.contains(u'\n'), "It must say what to do");
    }

    std::unique_ptr<QTemporaryDir> m_folder;
};

void JudgeTest::refusedFilesStayAsTheyWere_data()
{
    QTest::addColumn<Prepare>("prepare");
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("named");

    const auto row = [](const char *name, Prepare prepare, ProblemKind kind, const QString &named) {
        QTest::newRow(name) << prepare << static_cast<int>(kind) << named;
    };
    row(
        "empty", [](const QString &p) { writeFile(p, {}); }, ProblemKind::Empty, u"empty"_s);
    row(
        "text", [](const QString &p) { writeFile(p, QByteArray(5000, 'x')); }, ProblemKind::NoDatabase, u"SQLite"_s);
    row(
        "few bytes", [](const QString &p) { writeFile(p, "SQLite format 3"); }, ProblemKind::NoDatabase, u"SQLite"_s);
    row(
        "only the magic word",
        [](const QString &p) { writeFile(p, QByteArray("SQLite format 3\0", 16) + QByteArray(4080, '\xff')); },
        ProblemKind::NoDatabase, u"SQLite"_s);
    row(
        "other database", [](const QString &p) { runAll(p, {u"CREATE TABLE Birds (Name)"_s}); },
        ProblemKind::MissingTable, u"Users"_s);
    row(
        "spoilt page",
        [](const QString &p) {
            makeBigStore(p);
            spoil(p, QFile(p).size() / 2, 3000);
        },
        ProblemKind::Damaged, u"backup"_s);
    row(
        "cut off",
        [](const QString &p) {
            makeBigStore(p);
            QVERIFY(QFile::resize(p, QFile(p).size() / 2));
        },
        ProblemKind::Damaged, u"backup"_s);
    row(
        "spoilt catalogue",
        [](const QString &p) {
            makeStore(p);
            spoil(p, 100, 200);
        },
        ProblemKind::Damaged, u"backup"_s);
    row("lacks a table, in its log", makeLoggedLack, ProblemKind::MissingTable, u"SysUsage"_s);
    row("view instead of a table", dropping(u"CREATE VIEW V AS SELECT 1"_s), ProblemKind::MissingTable, u"SysUsage"_s);
}

void JudgeTest::refusedFilesStayAsTheyWere()
{
    QFETCH(Prepare, prepare);
    QFETCH(int, kind);
    QFETCH(QString, named);
    prepare(path());
    if (qstrcmp(QTest::currentDataTag(), "view instead of a table") == 0)
        runAll(path(), {u"DROP TABLE SysUsage"_s, u"CREATE VIEW SysUsage AS SELECT 1 AS SystemUsage, 2 AS Times, 3 AS "
                                                  "Dates"_s});

    const Bytes before = bytesOf(path());
    const QStringList namesBefore = QDir(m_folder->path()).entryList(QDir::Files);
    BusyWait wait(shortWait);
    Database database;
    const auto problem = openStore(path(), wait, database);
    QVERIFY(problem);
    QVERIFY(!database);
    QVERIFY2(static_cast<int>(problem->kind) == kind, qPrintable(problem->text));
    QVERIFY2(problem->text.contains(path()) && problem->text.contains(named), qPrintable(problem->text));
    QVERIFY(bytesOf(path()) == before);
    QStringList namesAfter = QDir(m_folder->path()).entryList(QDir::Files);
    namesAfter.removeAll(u"shop.sqlite-shm"_s); // the log's index, SQLite's scratch paper
    QCOMPARE(namesAfter, namesBefore);
}

void JudgeTest::everyTableAndColumnIsMissed_data()
{
    QTest::addColumn<Prepare>("prepare");
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("named");
    for (const StoreTable &table : storeTables()) {
        QTest::addRow("%s", qPrintable(table.name)) << Prepare(dropping(u"DROP TABLE "_s + table.name))
                                                    << static_cast<int>(ProblemKind::MissingTable) << table.name;
        for (const QString &column : table.columns) {
            QTest::addRow("%s.%s", qPrintable(table.name), qPrintable(column))
                << Prepare(dropColumn(table.name, column)) << static_cast<int>(ProblemKind::MissingColumn)
                << QString(table.name + u'.' + column);
        }
    }
}

void JudgeTest::everyTableAndColumnIsMissed()
{
    QFETCH(Prepare, prepare);
    QFETCH(int, kind);
    QFETCH(QString, named);
    prepare(path());
    const Bytes before = bytesOf(path());
    const auto problem = judge(path());
    QVERIFY(problem);
    QCOMPARE(static_cast<int>(problem->kind), kind);
    QVERIFY2(problem->text.contains(named), qPrintable(problem->text));
    QVERIFY(bytesOf(path()) == before);
}

void JudgeTest::goodFileIsOpenedAndUntouchedByJudging()
{
    makeStore(path());
    const Bytes before = bytesOf(path());
    QVERIFY(!judge(path()));
    QVERIFY(bytesOf(path()) == before);
    BusyWait wait(shortWait);
    Database database;
    QVERIFY(!openStore(path(), wait, database));
    QCOMPARE(readText(database.get(), u"SELECT StockName FROM StockList"_s), u"TEA"_s);
}

void JudgeTest::cleanStoreIsJudgedWithoutNewFiles()
{
    makeStore(path());
    QVERIFY(!judge(path()));
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files), QStringList{u"shop.sqlite"_s});
}

void JudgeTest::folderInsteadOfFile()
{
    QVERIFY(QDir().mkdir(path()));
    verifyRefused(path(), ProblemKind::Folder);
}

void JudgeTest::linkToNothing()
{
    QVERIFY(QFile::link(path(u"nowhere"_s), path()));
    QVERIFY(nameIsTaken(path()));
    verifyRefused(path(), ProblemKind::NotAFile);
}

void JudgeTest::readOnlyFile()
{
    makeStore(path());
    QVERIFY(QFile::setPermissions(path(), QFile::Permissions(0x4444)));
    QCOMPARE(::chmod(QFile::encodeName(m_folder->path()).constData(), 0777), 0);
    const DropRights dropped;
    verifyRefused(path(), ProblemKind::ReadOnly);
}

void JudgeTest::readOnlyLog()
{
    makeLoggedLack(path());
    QVERIFY(QFile::setPermissions(path(), QFile::Permissions(0x6666)));
    QVERIFY(QFile::setPermissions(logFileOf(path()), QFile::Permissions(0x4444)));
    QCOMPARE(::chmod(QFile::encodeName(m_folder->path()).constData(), 0777), 0);
    const DropRights dropped;
    const auto problem = judge(path());
    QVERIFY(problem);
    QVERIFY(problem->kind == ProblemKind::ReadOnly);
    QVERIFY2(problem->text.contains(logFileOf(path())), qPrintable(problem->text));
}

void JudgeTest::unreadableFile()
{
    makeStore(path());
    QVERIFY(QFile::setPermissions(path(), {}));
    const DropRights dropped;
    verifyRefused(path(), ProblemKind::Unreadable);
}

void JudgeTest::folderThatCannotBeWritten()
{
    makeStore(path());
    QVERIFY(QFile::setPermissions(path(), QFile::Permissions(0x6666)));
    QCOMPARE(::chmod(QFile::encodeName(m_folder->path()).constData(), 0555), 0);
    {
        const DropRights dropped;
        verifyRefused(path(), ProblemKind::FolderLocked);
        const auto problem = judgeNewStore(path(u"new.sqlite"_s), false);
        QVERIFY(problem && problem->kind == ProblemKind::FolderLocked);
    }
    QCOMPARE(::chmod(QFile::encodeName(m_folder->path()).constData(), 0755), 0);
}

void JudgeTest::rowsThatBreakARuleAreNoDamage()
{
    makeStore(path());
    runAll(path(), {u"ALTER TABLE SysUsage ADD COLUMN Mark TEXT CHECK (Mark <> 'x')"_s,
                    u"PRAGMA ignore_check_constraints = ON"_s, u"INSERT INTO SysUsage (Mark) VALUES ('x')"_s});
    QVERIFY(column(path(), u"PRAGMA quick_check"_s).constFirst().contains(u"CHECK"_s));
    QVERIFY(!judge(path()));
}

void JudgeTest::checkOfABigFileIsBounded()
{
    makeBigStore(path());
    spoil(path(), QFile(path()).size() / 2, 3000);
    BusyWait wait(shortWait);
    QVERIFY(judgeStore(path(), wait));
    // With no time at all the damage is not come to.
    QVERIFY(!judgeStore(path(), wait, 0ms));
}

void JudgeTest::linkedStoreIsJudgedWhereItLies()
{
    QVERIFY(QDir().mkdir(path(u"real"_s)));
    const QString real = path(u"real/shop.sqlite"_s);
    makeLoggedLack(real);
    QVERIFY(QFile::link(real, path()));
    const Bytes before = bytesOf(real);
    verifyRefused(path(), ProblemKind::MissingTable);
    QVERIFY(bytesOf(real) == before);
}

QTEST_GUILESS_MAIN(JudgeTest)
#include "judge_test.moc"
