// SPDX-License-Identifier: MIT
#include "app/shop/store_access.h"
#include "app/shop/store_create.h"
#include "app/shop/store_judge.h"
#include "app/shop/workshop.h"
#include "tests/app/store_files.h"
#include "tests/program/test_program.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <sqlite3.h>

#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;
using namespace harrowby::app::test;

class CreateTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_path = m_folder->filePath(u"shop.sqlite"_s);
    }

    void newStoreIsOneFile();
    void newStoreIsTheOwnersAlone();
    void leftFolderOfAKilledStartIsRemoved();
    void newStoreHasOneUserWhoMayDoEverything();
    void failureLeavesNothing();
    void fileThatAppearsMeanwhileIsLeftAlone();
    void missingFolder();
    void missingFoldersAreMade();
    void logWithoutItsFileIsNotTouched_data();
    void logWithoutItsFileIsNotTouched();

private:
    [[nodiscard]] QStringList names() const
    {
        return QDir(m_folder->path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_path;
};

namespace {

std::optional<SqlError> addSecret(sqlite3 *database)
{
    return addAdministrator(database, u"secret"_s);
}

} // namespace

void CreateTest::newStoreIsOneFile()
{
    QVERIFY(!createStore(m_path, false, addSecret));
    QCOMPARE(names(), QStringList{u"shop.sqlite"_s});
    QCOMPARE(column(m_path, u"PRAGMA integrity_check"_s), QStringList{u"ok"_s});
}

void CreateTest::newStoreIsTheOwnersAlone()
{
    const QString path = m_folder->filePath(u"a/b/shop.sqlite"_s);
    QVERIFY(!createStore(path, true, addSecret));
    QCOMPARE(permissionsText(path), u"0600"_s);
    QCOMPARE(permissionsText(m_folder->filePath(u"a"_s)), u"0700"_s);
    QCOMPARE(permissionsText(m_folder->filePath(u"a/b"_s)), u"0700"_s);
    // So are the files beside it while it is open.
    SqliteDatabase database;
    QVERIFY(!into(database, openDatabase(path, OpenMode::Write)));
    QVERIFY(!runSql(database.get(), u"INSERT INTO SysUsage VALUES ('', '', '')"_s));
    QCOMPARE(permissionsText(path + u"-wal"_s), u"0600"_s);
    QCOMPARE(permissionsText(path + u"-shm"_s), u"0600"_s);
}

void CreateTest::leftFolderOfAKilledStartIsRemoved()
{
    // The owner ends without a chance to tidy up.
    const pid_t child = ::fork();
    if (child == 0) {
        const Workshop workshop(m_folder->path(), Workshop::Purpose::NewStore);
        ::kill(::getpid(), SIGSTOP);
        ::_exit(0);
    }
    int status = 0;
    QCOMPARE(::waitpid(child, &status, WUNTRACED), child);
    QVERIFY(WIFSTOPPED(status));
    QCOMPARE(names().size(), 1);
    removeLeftWorkshops(m_folder->path());
    QCOMPARE(names().size(), 1);
    ::kill(child, SIGKILL);
    QCOMPARE(::waitpid(child, &status, 0), child);
    removeLeftWorkshops(m_folder->path());
    QCOMPARE(names(), QStringList());
}

void CreateTest::newStoreHasOneUserWhoMayDoEverything()
{
    QVERIFY(!createStore(m_path, false, addSecret));
    QCOMPARE(column(m_path, u"SELECT Username || '/' || Password || '/' || Type FROM Users"_s),
             QStringList{u"ADMINISTRATOR/SECRET/ADMINISTRATOR"_s});
    QCOMPARE(column(m_path, u"SELECT count(*) FROM Users WHERE InventoryUse = -1 AND InventorySales = -1 AND "
                            "InventoryReport = -1 AND InventoryUndo = -1 AND InventoryDelete = -1 AND "
                            "InventorySettings = -1 AND InventoryReorder = -1"_s),
             QStringList{u"1"_s});
}

void CreateTest::failureLeavesNothing()
{
    const auto fail = [](sqlite3 *database) { return runSql(database, u"INSERT INTO Nowhere VALUES (1)"_s); };
    const auto problem = createStore(m_path, false, fail);
    QVERIFY(problem);
    QVERIFY(problem->text.contains(m_path));
    QCOMPARE(names(), QStringList());
}

void CreateTest::fileThatAppearsMeanwhileIsLeftAlone()
{
    const auto makeOther = [this](sqlite3 *) -> std::optional<SqlError> {
        QFile other(m_path);
        if (!other.open(QIODevice::WriteOnly) || other.write("other") != 5)
            return SqlError{SQLITE_ERROR, other.errorString()};
        return {};
    };
    QVERIFY(!createStore(m_path, false, makeOther));
    QCOMPARE(bytesOf(m_path).file, QByteArray("other"));
    QCOMPARE(names(), QStringList{u"shop.sqlite"_s});
}

void CreateTest::missingFolder()
{
    const QString path = m_folder->filePath(u"missing/shop.sqlite"_s);
    const auto problem = createStore(path, false, addSecret);
    QVERIFY(problem);
    QVERIFY(problem->kind == ProblemKind::NoFolder);
    QVERIFY(problem->text.contains(path));
    QCOMPARE(names(), QStringList());
}

void CreateTest::missingFoldersAreMade()
{
    const QString path = m_folder->filePath(u"a/b/shop.sqlite"_s);
    QVERIFY(!judgeNewStore(path, true));
    QCOMPARE(names(), QStringList());
    QVERIFY(!createStore(path, true, addSecret));
    QVERIFY(QFile::exists(path));
}

void CreateTest::logWithoutItsFileIsNotTouched_data()
{
    QTest::addColumn<QString>("suffix");
    QTest::newRow("log") << u"-wal"_s;
    QTest::newRow("journal") << u"-journal"_s;
}

void CreateTest::logWithoutItsFileIsNotTouched()
{
    QFETCH(QString, suffix);
    QFile log(m_path + suffix);
    QVERIFY(log.open(QIODevice::WriteOnly));
    log.write("the last sales");
    log.close();
    const auto problem = createStore(m_path, false, addSecret);
    QVERIFY(problem);
    QVERIFY(problem->kind == ProblemKind::LeftOverLog);
    QVERIFY2(problem->text.contains(m_path + suffix), qPrintable(problem->text));
    QCOMPARE(names(), QStringList{u"shop.sqlite"_s + suffix});
}

HARROWBY_CORE_TEST(app_create_test, CreateTest)
#include "create_test.moc"
