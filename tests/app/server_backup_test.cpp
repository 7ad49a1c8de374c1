// SPDX-License-Identifier: MIT
#include "app/backup/backup.h"
#include "app/backup/backup_page.h"
#include "app/backup/kept_backups.h"
#include "app/backup/restore.h"
#include "app/backup/store_contents.h"
#include "app/backup/store_transfer.h"
#include "app/records/deeds.h"
#include "app/records/server_engine.h"
#include "app/records/store_records.h"
#include "tests/app/full_store.h"
#include "tests/app/server_desk.h"
#include "tests/app/store_files.h"
#include "tests/program/test_program.h"

#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QProcess>
#include <QProcessEnvironment>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <memory>
#include <utility>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;
using namespace harrowby::app::test;
using namespace harrowby::test;

namespace {

bool goOnRestoring(const WorkStep &)
{
    return true;
}

bool goOnBackingUp(const BackupProgress &)
{
    return true;
}

} // namespace

/// Backups of a store on a real server, what brings them back, and the real program that does all of it.
class ServerBackupTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init() { m_desk->begin(); }

    void backupIsAStoreOfOneMoment();
    void nobodyNeedsToWatch();
    void backupGoesIntoAFolderUnderItsName();
    void restoreReplacesEverythingButDeeds();
    void restoreThatIsRefusedChangesNothing_data();
    void restoreThatIsRefusedChangesNothing();
    void restoreLosesNoSaleThatCameMeanwhile();
    void rightsSufficeForWhoMay();
    void contentsAreThoseOfTheServer();
    void pageBacksUpAndAsksForARestore();
    void programCopiesBacksUpAndRestores();

private:
    struct Ended
    {
        int code = -1;
        QString said; ///< to standard output, then to standard error
    };
    [[nodiscard]] Ended run(const QStringList &arguments) const;

    std::unique_ptr<ServerDesk> m_desk;
};

void ServerBackupTest::initTestCase()
{
    if (const QString missing = PrivateCluster::missing(); !missing.isEmpty())
        QSKIP(qPrintable(missing));
    const auto engine = serverEngine();
    QVERIFY2(engine, engine ? "" : qPrintable(engine.error()));
    m_desk = std::make_unique<ServerDesk>();
}

/// A sale in the middle is in all of it or in nothing.
void ServerBackupTest::backupIsAStoreOfOneMoment()
{
    m_desk->fill();
    const QStringList before = m_desk->everyRow();
    bool isSold = false;
    const BackupResult made =
        backUpStore(m_desk->target(), m_desk->path(u"copy.db"_s), false, [&](const BackupProgress &progress) {
            if (progress.percent > 0 && !std::exchange(isSold, true)) // before, the moment may not have begun
                m_desk->cluster.sql(
                    u"insert into harrowby.SysUsage (Times) values ('late'); update harrowby.StockList set "
                    "StockAvailable = 1000; insert into harrowby.HarrowbySetting values ('late', 'x')"_s,
                    m_desk->database());
            return progress.percent <= 100;
        });
    QVERIFY2(made.outcome == BackupResult::Outcome::Done, qPrintable(made.problem));
    QVERIFY(isSold);
    QCOMPARE(made.file, m_desk->path(u"copy.db"_s));
    QCOMPARE(everyRow(m_desk->path(u"copy.db"_s)), before);
}

void ServerBackupTest::nobodyNeedsToWatch()
{
    m_desk->fill();
    const KeptBackup kept = keepBackup(m_desk->target(), m_desk->folder(), 1, QDateTime::currentDateTime(), {});
    QCOMPARE(kept.result.problem, QString());
    const RestoreOrder order = {kept.result.file, m_desk->target(), u"ANNA"_s, officePlace, m_desk->folder()};
    QCOMPARE(restoreStore(order, {}).problem, QString());
    QCOMPARE(copyServerToFile(m_desk->target(), m_desk->path(u"back.db"_s), {}).problem, QString());
    m_desk->begin();
    makeFullStore(m_desk->path(u"full.sqlite"_s));
    QCOMPARE(copyFileToServer(m_desk->path(u"full.sqlite"_s), m_desk->target(), {}).problem, QString());
}

void ServerBackupTest::backupGoesIntoAFolderUnderItsName()
{
    m_desk->fill();
    const KeptBackup kept =
        keepBackup(m_desk->target(), m_desk->folder(), 1, QDateTime(QDate(2026, 11, 22), QTime(22, 0)), goOnBackingUp);
    QVERIFY2(kept.result.outcome == BackupResult::Outcome::Done, qPrintable(kept.result.problem));
    QVERIFY2(QFileInfo(kept.result.file).fileName().startsWith(m_desk->database() + u"-2026-11-22-220000-"_s),
             qPrintable(kept.result.file));
    const auto found = lookIntoBackup(kept.result.file);
    QVERIFY2(found, found ? "" : qPrintable(found.error()));
    QCOMPARE(found->items, 23);
    const KeptBackup later =
        keepBackup(m_desk->target(), m_desk->folder(), 1, QDateTime(QDate(2026, 11, 23), QTime(22, 0)), goOnBackingUp);
    QCOMPARE(later.removed, QStringList(kept.result.file));
}

void ServerBackupTest::restoreReplacesEverythingButDeeds()
{
    m_desk->fill();
    const BackupResult made = backUpStore(m_desk->target(), m_desk->path(u"copy.db"_s), false, goOnBackingUp);
    QCOMPARE(made.problem, QString());
    {
        auto store = openStoreRecords(m_desk->target(), Access::Write);
        QVERIFY(store.has_value());
        Records &records = (*store)->records();
        QVERIFY(!Deeds(records, u"till 1"_s).add({deed::itemDeleted, u"BERT"_s, u"TEA"_s}));
        QVERIFY(records.write(kept::setting(), {u"delete from HarrowbySetting"_s, {}}).has_value());
    }
    m_desk->cluster.sql(
        u"delete from harrowby.StockList where rowid_ > 30; update harrowby.StockList set StockCost = 7; insert "
        "into harrowby.SysUsage (Times) values ('since')"_s,
        m_desk->database());
    const QStringList between = m_desk->everyRow();
    QDir(m_desk->folder()).mkdir(u"kept"_s);
    const RestoreOrder order = {m_desk->path(u"copy.db"_s), m_desk->target(), u"ANNA"_s, officePlace,
                                m_desk->path(u"kept"_s)};
    const RestoreResult restored = restoreStore(order, goOnRestoring);
    QVERIFY2(restored.outcome == RestoreResult::Outcome::Done, qPrintable(restored.problem));
    QVERIFY2(restored.kept.startsWith(m_desk->path(u"kept/"_s) + m_desk->database() + u"-before-restore-"_s),
             qPrintable(restored.kept));
    QCOMPARE(everyRow(restored.kept), between);
    QStringList added = m_desk->everyRow();
    for (const QString &row : everyRow(m_desk->path(u"copy.db"_s)))
        QVERIFY2(added.removeOne(row), qPrintable(row));
    QCOMPARE(added.size(), 2); // what was done since then, and the restore
    QVERIFY2(added.filter(u"ItemDeleted|tBERT|ttill 1"_s).size() == 1, qPrintable(added.join(u'\n')));
    QVERIFY2(added.filter(u"Restored|tANNA|toffice"_s).size() == 1, qPrintable(added.join(u'\n')));
}

void ServerBackupTest::restoreThatIsRefusedChangesNothing_data()
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

void ServerBackupTest::restoreThatIsRefusedChangesNothing()
{
    QFETCH(const QString, spoil);
    QFETCH(const QString, server);
    QFETCH(const QString, reason);
    m_desk->fill();
    runAll(m_desk->path(u"full.sqlite"_s), {spoil});
    if (!server.isEmpty())
        m_desk->cluster.sql(server, m_desk->database());
    const QStringList before = m_desk->everyRow();
    const RestoreOrder order = {m_desk->path(u"full.sqlite"_s), m_desk->target(), u"ANNA"_s, officePlace,
                                m_desk->folder()};
    const RestoreResult restored = restoreStore(order, goOnRestoring);
    QCOMPARE(restored.outcome, RestoreResult::Outcome::Failed);
    QVERIFY2(restored.problem.contains(reason), qPrintable(restored.problem));
    QVERIFY2(restored.problem.contains(u"The store is as it was."_s), qPrintable(restored.problem));
    QCOMPARE(m_desk->everyRow(), before);
}

/// Of a till that has come and gone between the keeping of the present store and its replacement.
void ServerBackupTest::restoreLosesNoSaleThatCameMeanwhile()
{
    m_desk->fill();
    bool isSold = false;
    const RestoreOrder order = {m_desk->path(u"full.sqlite"_s), m_desk->target(), u"ANNA"_s, officePlace,
                                m_desk->folder()};
    const RestoreResult restored = restoreStore(order, [&](const WorkStep &step) {
        const bool isKept = step.words.startsWith(u"The present store"_s) && step.percent == WorkStep::unknown;
        if (isKept && !std::exchange(isSold, true))
            m_desk->sql(u"insert into harrowby.PurchaseCart (PurchaseID) values ('LATE')"_s);
        return true;
    });
    QVERIFY(isSold);
    QCOMPARE(restored.outcome, RestoreResult::Outcome::Failed);
    QCOMPARE(restored.problem,
             u"Nothing was restored (Another program has written into the store meanwhile: PurchaseCart). The store is "
             "as it was.\nClose the tills and offices, then do it once more."_s);
    QCOMPARE(m_desk->countOf(u"PurchaseCart where PurchaseID = 'LATE'"_s), u"1"_s);
}

/// The rights are those that the set-up gives.
void ServerBackupTest::rightsSufficeForWhoMay()
{
    makeFullStore(m_desk->path(u"full.sqlite"_s));
    const QStringList rows = everyRow(m_desk->path(u"full.sqlite"_s));
    const QString till = m_desk->target(u"till_one"_s);
    const QString office = m_desk->target(u"office_one"_s);
    const TransferEnd refused = copyFileToServer(m_desk->path(u"full.sqlite"_s), till, goOnRestoring);
    QVERIFY2(refused.problem.contains(u"This machine may not copy a store to the server"_s),
             qPrintable(refused.problem));
    const TransferEnd end = copyFileToServer(m_desk->path(u"full.sqlite"_s), office, goOnRestoring);
    QVERIFY2(end.outcome == TransferEnd::Outcome::Done, qPrintable(end.problem));
    QCOMPARE(m_desk->everyRow(), rows);
    const TransferEnd back = copyServerToFile(office, m_desk->path(u"back.sqlite"_s), goOnRestoring);
    QVERIFY2(back.outcome == TransferEnd::Outcome::Done, qPrintable(back.problem));
    QCOMPARE(everyRow(m_desk->path(u"back.sqlite"_s)), rows);
    RestoreOrder order = {m_desk->path(u"full.sqlite"_s), office, u"ANNA"_s, officePlace, m_desk->folder()};
    const RestoreResult notOwner = restoreStore(order, goOnRestoring);
    QVERIFY2(notOwner.problem.contains(u"add-office NAME --owner"_s), qPrintable(notOwner.problem));
    QCOMPARE(m_desk->everyRow(), rows);
    order.store = m_desk->target(u"office_chief"_s);
    const RestoreResult restored = restoreStore(order, goOnRestoring);
    QVERIFY2(restored.outcome == RestoreResult::Outcome::Done, qPrintable(restored.problem));
}

void ServerBackupTest::contentsAreThoseOfTheServer()
{
    m_desk->fill();
    m_desk->cluster.sql(u"update harrowby.PurchaseCart set PurchasedDate = '261121090507' where rowid_ = 7"_s,
                        m_desk->database());
    const auto store = openStoreRecords(m_desk->target(), Access::Read);
    QVERIFY(store.has_value());
    const StoreContents contents = contentsOf((*store)->records());
    QCOMPARE(contents.items, 23);
    QCOMPARE(contents.purchases, 23);
    QCOMPARE(contents.users.size(), 23);
}

/// The office's, with a session of its own.
void ServerBackupTest::pageBacksUpAndAsksForARestore()
{
    m_desk->fill();
    const auto office = openStoreRecords(m_desk->target(), Access::Write);
    QVERIFY(office.has_value());
    const SignedDeeds deeds((*office)->records(), officePlace, u"ANNA"_s);
    const OfficeSettings settings = {[](const QString &, const QString &, const QString &usual) { return usual; },
                                     [](const QString &, const QString &, const QString &) { return true; }};
    BackupPage page(deeds, m_desk->target(), settings);
    page.show();
    page.findChild<QLineEdit *>(u"backupPlace"_s)->setText(m_desk->path(u"copy.db"_s));
    page.findChild<QPushButton *>(u"startBackup"_s)->click();
    const auto *outcome = page.findChild<QLabel *>(u"backupOutcome"_s);
    QTRY_VERIFY2_WITH_TIMEOUT(outcome->text().startsWith(u'\u2713'), qPrintable(outcome->text()), 60'000);
    const auto found = lookIntoBackup(m_desk->path(u"copy.db"_s));
    QVERIFY2(found, found ? "" : qPrintable(found.error()));
    QVERIFY2(page.findChild<QLabel *>(u"lastBackup"_s)->text().contains(m_desk->path(u"copy.db"_s)),
             qPrintable(page.findChild<QLabel *>(u"lastBackup"_s)->text()));

    const QString till = m_desk->target(u"till_one"_s);
    auto other = openStoreRecords(till, Access::Read);
    QVERIFY2(other, other ? "" : qPrintable(other.error()));
    QSignalSpy asked(&page, &BackupPage::restoreAsked);
    QStringList said;
    QTimer::singleShot(0, &page, [&] {
        auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget());
        auto *words = dialog->findChild<QLabel *>(u"restoreOutcome"_s);
        auto *restore = dialog->findChild<QPushButton *>(u"startRestore"_s);
        QTRY_VERIFY_WITH_TIMEOUT(restore->isEnabled(), 60'000);
        said << dialog->findChild<QLabel *>(u"restoreCell10"_s)->text() << words->text();
        restore->click();
        said << words->text();
        other->reset();
        dialog->reject();
    });
    page.findChild<QPushButton *>(u"restoreBackup"_s)->click();
    QCOMPARE(said.size(), 3);
    QVERIFY2(said.at(1).contains(u"can be restored: 23 items, 23 purchases"_s), qPrintable(said.at(1)));
    QVERIFY2(said.at(2).contains(u"which have logged in as: till_one."_s), qPrintable(said.at(2)));
    QCOMPARE(asked.size(), 0);
}

ServerBackupTest::Ended ServerBackupTest::run(const QStringList &arguments) const
{
    QProcess program;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const QString &name : {u"DISPLAY"_s, u"WAYLAND_DISPLAY"_s, u"QT_QPA_PLATFORM"_s})
        environment.remove(name);
    environment.insert(u"HOME"_s, m_desk->folder());
    program.setProcessEnvironment(environment);
    program.setWorkingDirectory(m_desk->folder());
    program.start(QStringLiteral(HARROWBY_PROGRAM), arguments);
    if (!program.waitForFinished(60'000))
        return {};
    return {program.exitStatus() == QProcess::NormalExit ? program.exitCode() : -1,
            QString::fromUtf8(program.readAllStandardOutput() + program.readAllStandardError())};
}

void ServerBackupTest::programCopiesBacksUpAndRestores()
{
    makeFullStore(m_desk->path(u"full.sqlite"_s));
    const QStringList rows = everyRow(m_desk->path(u"full.sqlite"_s));
    const Ended copied = run({u"--copy-store"_s, u"full.sqlite"_s, m_desk->target()});
    QVERIFY2(copied.code == 0, qPrintable(copied.said));
    QVERIFY2(copied.said.contains(u"copied and compared: Users 23, InventoryCategory 23, StockList 23"_s),
             qPrintable(copied.said));
    const Ended full = run({u"--copy-store"_s, u"full.sqlite"_s, m_desk->target()});
    QCOMPARE(full.code, 6);
    QVERIFY2(full.said.contains(u"is not empty"_s), qPrintable(full.said));
    const Ended saved = run({u"--database"_s, m_desk->target(), u"--backup"_s, u"."_s});
    QVERIFY2(saved.code == 0, qPrintable(saved.said));
    const QStringList backups = QDir(m_desk->folder()).entryList({m_desk->database() + u"-*.db"_s});
    QCOMPARE(backups.size(), 1);
    QCOMPARE(everyRow(m_desk->path(backups.constFirst())), rows);
    const Ended restored = run({u"--database"_s, m_desk->target(), u"--restore"_s, backups.constFirst()});
    QVERIFY2(restored.code == 0, qPrintable(restored.said));
    const Ended back = run({u"--copy-store"_s, m_desk->target(), u"back.sqlite"_s});
    QVERIFY2(back.code == 0, qPrintable(back.said));
    QCOMPARE(column(m_desk->path(u"back.sqlite"_s),
                    u"select Kind from HarrowbyActivity where Place = 'command line' order by 1"_s),
             (QStringList{u"BackedUp"_s, u"Restored"_s}));

    runAll(m_desk->path(u"full.sqlite"_s), {u"update StockList set StockCost = 'cheap' where rowid = 3"_s});
    const Ended unfit = run({u"--copy-store"_s, u"full.sqlite"_s, m_desk->target()});
    QCOMPARE(unfit.code, 7);
    QVERIFY2(unfit.said.contains(u"StockList, row 3, Tea: "_s), qPrintable(unfit.said));
    QCOMPARE(run({u"--copy-store"_s, u"none.sqlite"_s, m_desk->target()}).code, 4);
}

HARROWBY_TEST(app_server_backup_test, ServerBackupTest)
#include "server_backup_test.moc"
