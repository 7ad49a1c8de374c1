// SPDX-License-Identifier: MIT
#include "app/shop/busy_wait.h"
#include "app/shop/file_facts.h"
#include "app/shop/schema.h"
#include "app/shop/store_create.h"
#include "app/shop/store_judge.h"
#include "app/shop/store_open.h"
#include "tests/app/store_files.h"
#include "tests/program/test_program.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <sqlite3.h>

#include <sys/stat.h>

#include <functional>

using namespace Qt::StringLiterals;
using namespace harrowby;
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

/// Drops a table; the change stays in the log.
void makeLoggedLack(const QString &path)
{
    const QString other = path + u".live"_s;
    makeStore(other);
    SqliteDatabase live;
    QVERIFY(!into(live, openDatabase(other, OpenMode::Write)));
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

/// Creates the table again, with `more` after its own columns.
QStringList rebuilt(const QString &table, const QString &more)
{
    QStringList columns;
    for (const StoreTable &known : storeTables()) {
        if (known.name == table)
            columns = known.columns;
    }
    return {u"DROP TABLE "_s + table, u"CREATE TABLE %1 (%2, %3"_s.arg(table, columns.join(u", "_s), more)};
}

QStringList generated(const QString &table, const QString &column, const QString &how)
{
    QStringList statements = rebuilt(table, u"Other)"_s);
    statements.last().replace(column + u',', u"%1 AS (0) %2,"_s.arg(column, how));
    return statements;
}

/// Runs on a connection with the SQL function, which the store's own host defines.
QStringList withUnknownFunction(const QStringList &statements)
{
    return QStringList{u"(with the function)"_s} + statements;
}

void nothing(sqlite3_context *context, int, sqlite3_value **)
{
    sqlite3_result_int(context, 0);
}

void changeAll(const QString &path, QStringList statements)
{
    SqliteDatabase database;
    QVERIFY(!into(database, openDatabase(path, OpenMode::Write)));
    if (statements.constFirst().startsWith(u'(')) {
        statements.removeFirst();
        QCOMPARE(sqlite3_create_function(database.get(), "lost_sound", 1, SQLITE_UTF8 | SQLITE_DETERMINISTIC, nullptr,
                                         nothing, nullptr, nullptr),
                 SQLITE_OK);
    }
    for (const QString &statement : std::as_const(statements)) {
        const auto error = runSql(database.get(), statement);
        QVERIFY2(!error, qPrintable(statement + u": "_s + (error ? error->reason : QString())));
    }
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
        // So that a process without root's rights can read it.
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
    void storeThatDoesNotFitIsRefused_data();
    void storeThatDoesNotFitIsRefused();
    void storeThatFitsIsTaken_data();
    void storeThatFitsIsTaken();
    void namesThatCannotBe();

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

    const auto row = [](const char *name, const Prepare &prepare, ProblemKind kind, const QString &named) {
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
    SqliteDatabase database;
    const auto problem = into(database, openStore(path(), wait));
    QVERIFY(problem);
    QVERIFY(!database);
    QVERIFY2(static_cast<int>(problem->kind) == kind, qPrintable(problem->text));
    QVERIFY2(problem->text.contains(path()) && problem->text.contains(named), qPrintable(problem->text));
    QVERIFY(bytesOf(path()) == before);
    QStringList namesAfter = QDir(m_folder->path()).entryList(QDir::Files);
    namesAfter.removeAll(u"shop.sqlite-shm"_s); // the wal-index, which SQLite makes for itself
    QCOMPARE(namesAfter, namesBefore);
}

void JudgeTest::everyTableAndColumnIsMissed_data()
{
    QTest::addColumn<Prepare>("prepare");
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("named");
    for (const StoreTable &table : storeTables()) {
        QTest::addRow("%s", qPrintable(table.name))
            << dropping(u"DROP TABLE "_s + table.name) << static_cast<int>(ProblemKind::MissingTable) << table.name;
        for (const QString &column : table.columns) {
            QTest::addRow("%s.%s", qPrintable(table.name), qPrintable(column))
                << dropColumn(table.name, column) << static_cast<int>(ProblemKind::MissingColumn)
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
    SqliteDatabase database;
    QVERIFY(!into(database, openStore(path(), wait)));
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
    // Without any time the check does not reach the damage.
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

void JudgeTest::storeThatDoesNotFitIsRefused_data()
{
    QTest::addColumn<QStringList>("statements");
    QTest::addColumn<int>("kind");
    QTest::addColumn<QStringList>("named");
    const auto row = [](const char *name, const QStringList &statements, ProblemKind kind, const QStringList &named) {
        QTest::newRow(name) << statements << static_cast<int>(kind) << named;
    };
    row("without row IDs", rebuilt(u"StockList"_s, u"PRIMARY KEY (StockID)) WITHOUT ROWID"_s),
        ProblemKind::NoRowIdentity, {u"StockList"_s, u"WITHOUT ROWID"_s});
    row("row ID names taken", rebuilt(u"StockList"_s, u"rowid TEXT, _rowid_ TEXT, OID TEXT)"_s),
        ProblemKind::NoRowIdentity, {u"StockList"_s, u"rowid"_s});
    row("generated cost", generated(u"StockList"_s, u"StockCost"_s, u"VIRTUAL"_s), ProblemKind::GeneratedColumn,
        {u"StockList.StockCost"_s});
    row("generated day", generated(u"PurchaseCart"_s, u"PurchasedDate"_s, u"STORED"_s), ProblemKind::GeneratedColumn,
        {u"PurchaseCart.PurchasedDate"_s});
    row("generated setting", generated(u"StoreSettings"_s, u"Email"_s, u"VIRTUAL"_s), ProblemKind::GeneratedColumn,
        {u"StoreSettings.Email"_s});
    row("index over an unknown function",
        withUnknownFunction({u"CREATE INDEX by_sound ON StockList (lost_sound(StockName))"_s}), ProblemKind::Unfit,
        {u"index by_sound"_s, u"function: lost_sound"_s});
    row("index of purchases over an unknown function",
        withUnknownFunction({u"CREATE INDEX by_day ON PurchaseCart (\"lost_sound\" (PurchasedDate))"_s}),
        ProblemKind::Unfit, {u"index by_day"_s});
    row("trigger over an unknown function",
        withUnknownFunction({u"CREATE TRIGGER heard AFTER INSERT ON SysUsage BEGIN SELECT lost_sound(1); END"_s}),
        ProblemKind::Unfit, {u"trigger heard"_s});
    row("trigger into a lost table",
        {u"CREATE TRIGGER copy AFTER UPDATE ON StockList BEGIN INSERT INTO Lost VALUES (1); END"_s}, ProblemKind::Unfit,
        {u"StockList"_s, u"no such table: main.Lost"_s});
    row("column that must be filled", rebuilt(u"PurchaseCart"_s, u"Shift TEXT NOT NULL)"_s), ProblemKind::Unfit,
        {u"PurchaseCart.Shift"_s});
    row("key that must be filled", rebuilt(u"SysUsage"_s, u"Number INTEGER PRIMARY KEY) WITHOUT ROWID"_s),
        ProblemKind::Unfit, {u"SysUsage.Number"_s});
}

void JudgeTest::storeThatDoesNotFitIsRefused()
{
    QFETCH(QStringList, statements);
    QFETCH(int, kind);
    QFETCH(QStringList, named);
    makeStore(path());
    changeAll(path(), statements);
    const Bytes before = bytesOf(path());
    BusyWait wait(shortWait);
    SqliteDatabase database;
    const auto problem = into(database, openStore(path(), wait));
    QVERIFY(problem);
    QVERIFY2(static_cast<int>(problem->kind) == kind, qPrintable(problem->text));
    for (const QString &name : named + QStringList{path(), u"\n"_s})
        QVERIFY2(problem->text.contains(name), qPrintable(problem->text));
    QVERIFY(bytesOf(path()) == before);
}

void JudgeTest::storeThatFitsIsTaken_data()
{
    QTest::addColumn<QStringList>("statements");
    QTest::newRow("triggers") << QStringList{
        u"CREATE TABLE Changes (Item)"_s,
        u"CREATE TRIGGER noted AFTER UPDATE OF StockAvailable ON StockList BEGIN INSERT INTO Changes VALUES "
        "(new.StockID); END"_s,
        u"CREATE TRIGGER kept BEFORE DELETE ON StockList BEGIN SELECT RAISE(ABORT, 'kept'); END"_s};
    QTest::newRow("generated beside") << QStringList{
        u"ALTER TABLE StockList ADD COLUMN Value AS (StockCost * StockAvailable)"_s,
        u"ALTER TABLE PurchaseCart ADD COLUMN Year AS (substr(PurchasedDate, 1, 2))"_s};
    QTest::newRow("generated for the login") << generated(u"Users"_s, u"InventoryUse"_s, u"VIRTUAL"_s);
    QTest::newRow("an unused row ID") << rebuilt(u"PurchaseCart"_s, u"PRIMARY KEY (PurchaseID)) WITHOUT ROWID"_s);
    QTest::newRow("one row ID name left") << rebuilt(u"StockList"_s, u"rowid TEXT, _rowid_ TEXT)"_s);
    QTest::newRow("number of its own") << rebuilt(u"SysUsage"_s, u"Number INTEGER PRIMARY KEY NOT NULL)"_s);
    QTest::newRow("filled by itself") << rebuilt(u"PurchaseCart"_s, u"Shift TEXT NOT NULL DEFAULT 'day')"_s);
    QTest::newRow("settings that are there")
        << rebuilt(u"StoreSettings"_s, u"Shift TEXT NOT NULL)"_s) +
               QStringList{u"INSERT INTO StoreSettings VALUES (0, 1, 'a', 1, 0, 'day')"_s};
    QTest::newRow("strange index elsewhere")
        << QStringList{u"CREATE TABLE Birds (Name)"_s, u"CREATE UNIQUE INDEX by_name ON Birds (lower(Name))"_s};
}

void JudgeTest::storeThatFitsIsTaken()
{
    QFETCH(QStringList, statements);
    makeStore(path());
    changeAll(path(), statements);
    const auto problem = judge(path());
    QVERIFY2(!problem, problem ? qPrintable(problem->text) : "");
}

void JudgeTest::namesThatCannotBe()
{
    const auto kindOf = [](const QString &name) {
        const auto problem = judgeNewStore(name, false);
        return problem ? std::optional(problem->kind) : std::nullopt;
    };
    QVERIFY(kindOf(u":memory:"_s) == ProblemKind::NoFile);
    QVERIFY(kindOf(path(u"st\ufffdre.sqlite"_s)) == ProblemKind::BadName);
    QVERIFY(!kindOf(path(u"st\u00f6re.sqlite"_s)));
    // An existing store of such a name is accepted.
    makeStore(path());
    QVERIFY(QFile::rename(path(), path(u"st\ufffdre.sqlite"_s)));
    QVERIFY(!judge(path(u"st\ufffdre.sqlite"_s)));
}

HARROWBY_CORE_TEST(app_judge_test, JudgeTest)
#include "judge_test.moc"
