// SPDX-License-Identifier: MIT
#include "app/backup/backup.h"
#include "app/backup/kept_backups.h"
#include "app/backup/restore.h"
#include "app/backup/store_contents.h"
#include "app/backup/store_transfer.h"
#include "app/copy/server_copy.h"
#include "app/copy/unfit_words.h"
#include "app/records/deeds.h"
#include "app/records/server_engine.h"
#include "app/records/sqlite_records.h"
#include "app/records/store_records.h"
#include "app/shop/busy_wait.h"
#include "app/shop/store_judge.h"
#include "tests/app/full_store.h"
#include "tests/app/store_files.h"
#include "tests/doubles/private_cluster.h"
#include "tests/doubles/server_shop.h"
#include "tests/program/test_program.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;
using namespace harrowby::app::test;
using namespace harrowby::test;

using How = TransferEnd::Outcome;

namespace {

bool goOnCopying(const WorkStep &)
{
    return true;
}

bool goOnBackingUp(const BackupProgress &)
{
    return true;
}

} // namespace

/// A whole store between a file and a real server.
class ServerCopyTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void storeGoesToAServerAndBack();
    void newRowsGetIdentitiesAboveTheCopied();
    void serverThatIsNotEmptyIsRefused();
    void fileThatIsThereIsRefused();
    void fileThatIsOpenIsRefused();
    void serverThatIsOpenIsRefused();
    void rowsThatDoNotFitAreToldBeforeAnythingIsWritten();
    void missingStoresAreTold();
    void copyThatBreaksOffLeavesAnEmptyServer();
    void stopLeavesAnEmptyServer();
    void foreignPartsOfAFileAreNamed();
    void rightsSufficeForWhoMay();

    void backupIsAStoreOfOneMoment();
    void backupGoesIntoAFolderUnderItsName();
    void restoreReplacesEverythingButDeeds();
    void restoreThatIsRefusedChangesNothing_data();
    void restoreThatIsRefusedChangesNothing();
    void contentsAreThoseOfTheServer();

private:
    [[nodiscard]] QString path(const QString &name) const { return m_folder->filePath(name); }
    [[nodiscard]] QString target() const { return m_target; }
    [[nodiscard]] QStringList onServer();
    [[nodiscard]] QString countOf(const QString &table);
    void fillServer();

    std::unique_ptr<PrivateCluster> m_cluster;
    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_target;
    int m_databases = 0;
    QString m_database;
};

void ServerCopyTest::initTestCase()
{
    if (const QString missing = PrivateCluster::missing(); !missing.isEmpty())
        QSKIP(qPrintable(missing));
    const auto engine = serverEngine();
    QVERIFY2(engine, engine ? "" : qPrintable(engine.error()));
    m_cluster = std::make_unique<PrivateCluster>();
    m_cluster->start();
}

/// A store's database of its own, copied from a made one.
void ServerCopyTest::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    if (m_databases == 0)
        setUpShop(*m_cluster, u"shop"_s);
    m_database = u"store%1"_s.arg(++m_databases);
    m_cluster->sql(u"create database %1 template shop"_s.arg(m_database), u"postgres"_s);
    m_target = m_cluster->conninfo(u"postgres"_s, m_database);
}

void ServerCopyTest::cleanup()
{
    m_folder.reset();
}

QStringList ServerCopyTest::onServer()
{
    const auto store = openStoreRecords(target(), Access::Read);
    return store ? everyRow((*store)->records()) : QStringList{store.error()};
}

QString ServerCopyTest::countOf(const QString &table)
{
    return m_cluster->sql(u"select count(*) from harrowby."_s + table, m_database).value(0);
}

void ServerCopyTest::fillServer()
{
    makeFullStore(path(u"full.sqlite"_s));
    const TransferEnd end = copyFileToServer(path(u"full.sqlite"_s), target(), goOnCopying);
    QVERIFY2(end.outcome == How::Done, qPrintable(end.problem + unfitWords(end.unfit, 9)));
}

void ServerCopyTest::storeGoesToAServerAndBack()
{
    fillServer();
    const QStringList rows = everyRow(path(u"full.sqlite"_s));
    QVERIFY(rows.size() > 300);
    QCOMPARE(onServer(), rows);
    const TransferEnd back = copyServerToFile(target(), path(u"back.sqlite"_s), goOnCopying);
    QVERIFY2(back.outcome == How::Done, qPrintable(back.problem));
    QCOMPARE(back.rows.value(u"StockList"_s), 23);
    QCOMPARE(everyRow(path(u"back.sqlite"_s)), rows);
    BusyWait wait;
    const auto problem = judgeStore(path(u"back.sqlite"_s), wait);
    QVERIFY2(!problem, problem ? qPrintable(problem->text) : "");
}

void ServerCopyTest::newRowsGetIdentitiesAboveTheCopied()
{
    fillServer();
    QVERIFY(m_cluster->trySql(u"insert into harrowby.StockList (StockID) values ('NEW')"_s, m_database));
    QCOMPARE(m_cluster->sql(u"select rowid_ from harrowby.StockList where StockID = 'NEW'"_s, m_database),
             QStringList(QString::number(22 * 22 + 4)));
}

void ServerCopyTest::serverThatIsNotEmptyIsRefused()
{
    makeFullStore(path(u"full.sqlite"_s));
    QVERIFY(m_cluster->trySql(u"insert into harrowby.SysUsage (Times) values ('1'), ('2')"_s, m_database));
    const TransferEnd end = copyFileToServer(path(u"full.sqlite"_s), target(), goOnCopying);
    QCOMPARE(end.outcome, How::Failed);
    QVERIFY2(end.problem.endsWith(u"It has rows in: SysUsage (2)."_s), qPrintable(end.problem));
    QCOMPARE(countOf(u"SysUsage"_s), u"2"_s);
    QCOMPARE(countOf(u"StockList"_s), u"0"_s);
}

void ServerCopyTest::fileThatIsThereIsRefused()
{
    makeStore(path(u"there.sqlite"_s));
    const Bytes before = bytesOf(path(u"there.sqlite"_s));
    const TransferEnd end = copyServerToFile(target(), path(u"there.sqlite"_s), goOnCopying);
    QCOMPARE(end.outcome, How::Failed);
    QVERIFY2(end.problem.contains(u"already"_s), qPrintable(end.problem));
    QVERIFY(bytesOf(path(u"there.sqlite"_s)) == before);
}

void ServerCopyTest::fileThatIsOpenIsRefused()
{
    makeFullStore(path(u"full.sqlite"_s));
    SqliteDatabase till;
    QVERIFY(!into(till, openDatabase(path(u"full.sqlite"_s), OpenMode::Write)));
    QVERIFY(!runSql(till.get(), u"select count(*) from StockList"_s));
    const TransferEnd end = copyFileToServer(path(u"full.sqlite"_s), target(), goOnCopying);
    QCOMPARE(end.outcome, How::Failed);
    QVERIFY2(end.problem.contains(u"the copying needs the store for itself"_s), qPrintable(end.problem));
    QCOMPARE(countOf(u"StockList"_s), u"0"_s);
}

void ServerCopyTest::serverThatIsOpenIsRefused()
{
    makeFullStore(path(u"full.sqlite"_s));
    m_cluster->sql(u"create role till_desk login superuser"_s);
    auto till = openStoreRecords(m_cluster->conninfo(u"till_desk"_s, m_database), Access::Read);
    QVERIFY2(till, till ? "" : qPrintable(till.error()));
    for (const TransferEnd &end : {copyFileToServer(path(u"full.sqlite"_s), target(), goOnCopying),
                                   copyServerToFile(target(), path(u"back.sqlite"_s), goOnCopying)}) {
        QCOMPARE(end.outcome, How::Failed);
        QVERIFY2(end.problem.contains(u"which have logged in as: till_desk."_s), qPrintable(end.problem));
    }
    QVERIFY(!QFile::exists(path(u"back.sqlite"_s)));
    QCOMPARE(countOf(u"StockList"_s), u"0"_s);
    till->reset();
    m_cluster->sql(u"drop role till_desk"_s);
}

void ServerCopyTest::rowsThatDoNotFitAreToldBeforeAnythingIsWritten()
{
    makeFullStore(path(u"full.sqlite"_s));
    runAll(path(u"full.sqlite"_s), {u"update StockList set StockCost = 'cheap' where rowid = 3"_s,
                                    u"update StockList set StockName = 'a' || char(0) || 'b' where rowid = 4"_s,
                                    u"update PurchaseCart set PurchaseID = hex(randomblob(1400)) where rowid = 7"_s,
                                    u"update HarrowbyCode set Units = 3000000000 where rowid = 2"_s});
    const TransferEnd end = copyFileToServer(path(u"full.sqlite"_s), target(), goOnCopying);
    QCOMPARE(end.outcome, How::RowsRefused);
    QCOMPARE(end.unfit.count, 4);
    const QString words = unfitWords(end.unfit, 9);
    QVERIFY2(words.contains(u"StockList, row 3, Tea: a column of figures on a server holds no text (StockCost)"_s),
             qPrintable(words));
    QVERIFY2(words.contains(u"StockList, row 4, caf\u00e9 \u00d1: a text on a server holds no NUL (StockName)"_s),
             qPrintable(words));
    QVERIFY2(words.contains(u"has at most 2600 bytes (PurchaseID)"_s), qPrintable(words));
    QVERIFY2(words.contains(u"HarrowbyCode, 1 caf"_s), qPrintable(words));
    QCOMPARE(countOf(u"StockList"_s), u"0"_s);
}

void ServerCopyTest::missingStoresAreTold()
{
    const TransferEnd noFile = copyFileToServer(path(u"none.sqlite"_s), target(), goOnCopying);
    QCOMPARE(noFile.outcome, How::NotOpened);
    QVERIFY2(noFile.problem.contains(u"There is no store file"_s), qPrintable(noFile.problem));
    makeStore(path(u"one.sqlite"_s));
    const TransferEnd noServer =
        copyFileToServer(path(u"one.sqlite"_s), m_cluster->conninfo(u"postgres"_s, u"nowhere"_s), goOnCopying);
    QCOMPARE(noServer.outcome, How::NotOpened);
    QVERIFY2(noServer.problem.contains(u"nowhere"_s), qPrintable(noServer.problem));
}

/// What a trigger refuses stands for whatever ends a copy in the middle.
void ServerCopyTest::copyThatBreaksOffLeavesAnEmptyServer()
{
    makeFullStore(path(u"full.sqlite"_s));
    m_cluster->sql(
        u"create function harrowby.refuse() returns trigger language plpgsql as $$ begin raise exception 'the disk "
        "is full'; end $$; create trigger refuse before insert on harrowby.HarrowbyPayment execute function "
        "harrowby.refuse()"_s,
        m_database);
    const TransferEnd end = copyFileToServer(path(u"full.sqlite"_s), target(), goOnCopying);
    QCOMPARE(end.outcome, How::Failed);
    QVERIFY2(end.problem.contains(u"HarrowbyPayment: "_s) && end.problem.contains(u"the disk is full"_s),
             qPrintable(end.problem));
    QCOMPARE(onServer(), QStringList());
}

void ServerCopyTest::stopLeavesAnEmptyServer()
{
    makeFullStore(path(u"full.sqlite"_s));
    int left = 40;
    const TransferEnd end =
        copyFileToServer(path(u"full.sqlite"_s), target(), [&](const WorkStep &) { return left-- > 0; });
    QCOMPARE(end.outcome, How::Stopped);
    QVERIFY(left < 0);
    QCOMPARE(onServer(), QStringList());
    QCOMPARE(copyServerToFile(target(), path(u"back.sqlite"_s), [](const WorkStep &) { return false; }).outcome,
             How::Stopped);
    QCOMPARE(QDir(m_folder->path()).entryList({u"back*"_s, u".harrowby*"_s}, QDir::AllEntries | QDir::Hidden),
             QStringList());
}

void ServerCopyTest::foreignPartsOfAFileAreNamed()
{
    makeFullStore(path(u"full.sqlite"_s));
    runAll(path(u"full.sqlite"_s), {u"create table Suppliers (Name text)"_s});
    const TransferEnd end = copyFileToServer(path(u"full.sqlite"_s), target(), goOnCopying);
    QVERIFY2(end.outcome == How::Done, qPrintable(end.problem));
    QCOMPARE(end.left, QStringList(u"table Suppliers"_s));
}

/// The rights are those that the set-up gives.
void ServerCopyTest::rightsSufficeForWhoMay()
{
    QFile rights(QStringLiteral(HARROWBY_RIGHTS));
    QVERIFY(rights.open(QIODevice::ReadOnly));
    m_cluster->sql(
        u"create role harrowby_till; create role harrowby_office; create role harrowby_owner; create role "
        "harrowby_standby; create role till_one login in role harrowby_till; create role office_one login in "
        "role harrowby_office; create role office_chief login in role harrowby_office, harrowby_owner"_s);
    const QString statements = QString::fromUtf8(rights.readAll());
    m_cluster->sql(QString(statements).replace(u"database harrowby "_s, u"database %1 "_s.arg(m_database)), m_database);
    m_cluster->sql(u"grant execute on function harrowby.empty_store() to harrowby_owner"_s,
                   m_database); // it is its own
    makeFullStore(path(u"full.sqlite"_s));
    const QStringList rows = everyRow(path(u"full.sqlite"_s));
    const QString till = m_cluster->conninfo(u"till_one"_s, m_database);
    const QString office = m_cluster->conninfo(u"office_one"_s, m_database);
    const TransferEnd refused = copyFileToServer(path(u"full.sqlite"_s), till, goOnCopying);
    QVERIFY2(refused.problem.contains(u"this machine may not replace a whole store"_s), qPrintable(refused.problem));
    const TransferEnd end = copyFileToServer(path(u"full.sqlite"_s), office, goOnCopying);
    QVERIFY2(end.outcome == How::Done, qPrintable(end.problem));
    QCOMPARE(onServer(), rows);
    const TransferEnd back = copyServerToFile(office, path(u"back.sqlite"_s), goOnCopying);
    QVERIFY2(back.outcome == How::Done, qPrintable(back.problem));
    QCOMPARE(everyRow(path(u"back.sqlite"_s)), rows);
    RestoreOrder order = {path(u"full.sqlite"_s), office, u"ANNA"_s, officePlace, m_folder->path()};
    const RestoreResult notOwner = restoreStore(order, goOnCopying);
    QVERIFY2(notOwner.problem.contains(u"add-office NAME --owner"_s), qPrintable(notOwner.problem));
    QCOMPARE(onServer(), rows);
    order.store = m_cluster->conninfo(u"office_chief"_s, m_database);
    const RestoreResult restored = restoreStore(order, goOnCopying);
    QVERIFY2(restored.outcome == RestoreResult::Outcome::Done, qPrintable(restored.problem));
}

/// A sale in the middle is in all of it or in nothing.
void ServerCopyTest::backupIsAStoreOfOneMoment()
{
    fillServer();
    const QStringList before = onServer();
    bool isSold = false;
    const BackupResult made = backUpStore(target(), path(u"copy.db"_s), false, [&](const BackupProgress &progress) {
        if (!std::exchange(isSold, true))
            m_cluster->sql(u"insert into harrowby.SysUsage (Times) values ('late'); update harrowby.StockList set "
                           "StockAvailable = 1000; insert into harrowby.HarrowbySetting values ('late', 'x')"_s,
                           m_database);
        return progress.percent <= 100;
    });
    QVERIFY2(made.outcome == BackupResult::Outcome::Done, qPrintable(made.problem));
    QVERIFY(isSold);
    QCOMPARE(made.file, path(u"copy.db"_s));
    QCOMPARE(everyRow(path(u"copy.db"_s)), before);
}

void ServerCopyTest::backupGoesIntoAFolderUnderItsName()
{
    fillServer();
    const KeptBackup kept =
        keepBackup(target(), m_folder->path(), 1, QDateTime(QDate(2026, 11, 22), QTime(22, 0)), goOnBackingUp);
    QVERIFY2(kept.result.outcome == BackupResult::Outcome::Done, qPrintable(kept.result.problem));
    QVERIFY2(QFileInfo(kept.result.file).fileName().startsWith(m_database + u"-2026-11-22-220000-"_s),
             qPrintable(kept.result.file));
    const auto found = lookIntoBackup(kept.result.file);
    QVERIFY2(found, found ? "" : qPrintable(found.error()));
    QCOMPARE(found->items, 23);
    const KeptBackup later =
        keepBackup(target(), m_folder->path(), 1, QDateTime(QDate(2026, 11, 23), QTime(22, 0)), goOnBackingUp);
    QCOMPARE(later.removed, QStringList(kept.result.file));
}

void ServerCopyTest::restoreReplacesEverythingButDeeds()
{
    fillServer();
    const BackupResult made = backUpStore(target(), path(u"copy.db"_s), false, goOnBackingUp);
    QCOMPARE(made.problem, QString());
    {
        auto store = openStoreRecords(target(), Access::Write);
        QVERIFY(store.has_value());
        Records &records = (*store)->records();
        QVERIFY(!Deeds(records, u"till 1"_s).add({deed::itemDeleted, u"BERT"_s, u"TEA"_s}));
        QVERIFY(records.write(kept::setting(), {u"delete from HarrowbySetting"_s, {}}).has_value());
    }
    m_cluster->sql(
        u"delete from harrowby.StockList where rowid_ > 30; update harrowby.StockList set StockCost = 7; insert "
        "into harrowby.SysUsage (Times) values ('since')"_s,
        m_database);
    const QStringList between = onServer();
    QDir(m_folder->path()).mkdir(u"kept"_s);
    const RestoreOrder order = {path(u"copy.db"_s), target(), u"ANNA"_s, officePlace, path(u"kept"_s)};
    const RestoreResult restored = restoreStore(order, goOnCopying);
    QVERIFY2(restored.outcome == RestoreResult::Outcome::Done, qPrintable(restored.problem));
    QVERIFY2(restored.kept.startsWith(path(u"kept/"_s) + m_database + u"-before-restore-"_s),
             qPrintable(restored.kept));
    QCOMPARE(everyRow(restored.kept), between);
    QStringList added = onServer();
    for (const QString &row : everyRow(path(u"copy.db"_s)))
        QVERIFY2(added.removeOne(row), qPrintable(row));
    QCOMPARE(added.size(), 2); // what was done since then, and the restore
    QVERIFY2(added.filter(u"ItemDeleted|tBERT|ttill 1"_s).size() == 1, qPrintable(added.join(u'\n')));
    QVERIFY2(added.filter(u"Restored|tANNA|toffice"_s).size() == 1, qPrintable(added.join(u'\n')));
}

void ServerCopyTest::restoreThatIsRefusedChangesNothing_data()
{
    QTest::addColumn<QString>("spoil");
    QTest::addColumn<QString>("server");
    QTest::addColumn<QString>("reason");
    QTest::newRow("a row does not fit") << u"update StockList set StockCost = 'cheap' where rowid = 3"_s << QString()
                                        << u"StockList, row 3, Tea: a column of figures"_s;
    QTest::newRow("no store") << u"drop table StockList"_s << QString() << u"This backup cannot be used."_s;
    QTest::newRow("the server refuses a row") << u"update StockList set StockName = 'refused' where rowid = 4"_s
                                              << u"alter table harrowby.StockList add check (StockName <> 'refused')"_s
                                              << u"Nothing was restored (StockList: "_s;
}

void ServerCopyTest::restoreThatIsRefusedChangesNothing()
{
    QFETCH(const QString, spoil);
    QFETCH(const QString, server);
    QFETCH(const QString, reason);
    fillServer();
    runAll(path(u"full.sqlite"_s), {spoil});
    if (!server.isEmpty())
        m_cluster->sql(server, m_database);
    const QStringList before = onServer();
    const RestoreOrder order = {path(u"full.sqlite"_s), target(), u"ANNA"_s, officePlace, m_folder->path()};
    const RestoreResult restored = restoreStore(order, goOnCopying);
    QCOMPARE(restored.outcome, RestoreResult::Outcome::Failed);
    QVERIFY2(restored.problem.contains(reason), qPrintable(restored.problem));
    QVERIFY2(restored.problem.contains(u"The store is as it was."_s), qPrintable(restored.problem));
    QCOMPARE(onServer(), before);
}

void ServerCopyTest::contentsAreThoseOfTheServer()
{
    fillServer();
    m_cluster->sql(u"update harrowby.PurchaseCart set PurchasedDate = '261121090507' where rowid_ = 7"_s, m_database);
    const auto store = openStoreRecords(target(), Access::Read);
    QVERIFY(store.has_value());
    const StoreContents contents = contentsOf((*store)->records());
    QCOMPARE(contents.items, 23);
    QCOMPARE(contents.purchases, 23);
    QCOMPARE(contents.users.size(), 23);
}

HARROWBY_TEST(app_server_copy_test, ServerCopyTest)
#include "server_copy_test.moc"
