// SPDX-License-Identifier: MIT
#include "app/records/server_engine.h"
#include "app/records/store_records.h"
#include "tests/app/full_store.h"
#include "tests/app/server_desk.h"
#include "tests/app/store_files.h"
#include "tests/program/test_program.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QProcessEnvironment>
#include <QRegularExpression>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;
using namespace harrowby::app::test;
using namespace harrowby::test;

/// What the real program does with a store on a real server, without a window: how it ends, and what it says.
class ServerErrandsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();

    void everyErrandTakesAnAddress_data();
    void everyErrandTakesAnAddress();
    void storeThatCannotBeOpenedIsTold_data();
    void storeThatCannotBeOpenedIsTold();
    void wrongLineIsRefused_data();
    void wrongLineIsRefused();
    void copyOfRowsThatDoNotFitIsRefused();
    void fullStoreIsNotCopiedOver();
    void whoMayNotIsTold_data();
    void whoMayNotIsTold();
    void openTillIsInTheWay();
    void failedErrandsAreTold();

private:
    struct Ended
    {
        int code = -1;
        QString out;
        QString errors;
    };
    [[nodiscard]] Ended run(const QStringList &arguments) const;
    /// As harrowby-server's add-till and add-office write it.
    void addService(const QString &name, const QString &user) const;
    void write(const QString &name, const QByteArray &text) const;
    [[nodiscard]] QString url(const QString &user, const QString &database) const
    {
        return u"postgresql://%1@127.0.0.1:%2/%3"_s.arg(user).arg(m_desk->cluster.port()).arg(database);
    }
    [[nodiscard]] QStringList files(const QString &pattern) const
    {
        return QDir(m_desk->folder()).entryList({pattern}, QDir::Files | QDir::Hidden);
    }

    std::unique_ptr<ServerDesk> m_desk;
};

void ServerErrandsTest::initTestCase()
{
    if (const QString missing = PrivateCluster::missing(); !missing.isEmpty())
        QSKIP(qPrintable(missing));
    m_desk = std::make_unique<ServerDesk>();
}

void ServerErrandsTest::init()
{
    m_desk->begin();
    for (const QString &user : {u"till_one"_s, u"office_one"_s, u"office_chief"_s})
        addService(user, user);
    write(u"list.csv"_s, "StockID,StockName,StockCost\nNEW-1,CAKE,2.50\n");
}

void ServerErrandsTest::write(const QString &name, const QByteArray &text) const
{
    QFile file(m_desk->path(name));
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Append) && file.write(text) == text.size());
}

void ServerErrandsTest::addService(const QString &name, const QString &user) const
{
    write(u".pg_service.conf"_s, u"[%1]\nhost=127.0.0.1\nport=%2\nuser=%3\ndbname=%4\n"_s.arg(name)
                                     .arg(m_desk->cluster.port())
                                     .arg(user, m_desk->database())
                                     .toUtf8());
}

ServerErrandsTest::Ended ServerErrandsTest::run(const QStringList &arguments) const
{
    QProcess program;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const QString &name : {u"DISPLAY"_s, u"WAYLAND_DISPLAY"_s, u"QT_QPA_PLATFORM"_s, u"XDG_SESSION_TYPE"_s})
        environment.remove(name);
    environment.insert(u"HOME"_s, m_desk->folder());
    for (const QString &name : {u"XDG_DATA_HOME"_s, u"XDG_CONFIG_HOME"_s, u"XDG_STATE_HOME"_s})
        environment.remove(name);
    program.setProcessEnvironment(environment);
    program.setWorkingDirectory(m_desk->folder());
    program.start(QStringLiteral(HARROWBY_PROGRAM), arguments);
    if (!program.waitForFinished(60'000))
        return {};
    return {program.exitStatus() == QProcess::NormalExit ? program.exitCode() : -1,
            QString::fromUtf8(program.readAllStandardOutput()), QString::fromUtf8(program.readAllStandardError())};
}

void ServerErrandsTest::everyErrandTakesAnAddress_data()
{
    QTest::addColumn<bool>("isService");
    QTest::newRow("service") << true;
    QTest::newRow("postgresql") << false;
}

void ServerErrandsTest::everyErrandTakesAnAddress()
{
    QFETCH(const bool, isService);
    const QString store = isService ? u"service=office_chief"_s : url(u"office_chief"_s, m_desk->database());
    const QStringList database = {u"--database"_s, store};
    makeFullStore(m_desk->path(u"full.sqlite"_s));
    const QStringList rows = everyRow(m_desk->path(u"full.sqlite"_s));

    const Ended copied = run({u"--copy-store"_s, u"full.sqlite"_s, store});
    QCOMPARE(copied.errors, QString());
    QCOMPARE(copied.code, 0);
    QVERIFY2(copied.out.startsWith(u"The store is copied and compared: Users 23, InventoryCategory 23, StockList 23, "
                                   "PurchaseCart 23, StoreSettings 23, SysUsage 23, "_s) &&
                 copied.out.contains(u"\nSell from %1 from now on. What is in %2 stays as it is;"_s.arg(
                     store, m_desk->path(u"full.sqlite"_s))),
             qPrintable(copied.out));
    QCOMPARE(m_desk->everyRow(), rows);
    QCOMPARE(everyRow(m_desk->path(u"full.sqlite"_s)), rows);

    const Ended saved = run(database + QStringList{u"--backup"_s, u"."_s, u"--keep=1"_s});
    QCOMPARE(saved.errors, QString());
    QCOMPARE(saved.code, 0);
    const QString begin = isService ? u"office_chief"_s : m_desk->database();
    const QStringList backups = files(begin + u"-2*.db"_s);
    QCOMPARE(backups.size(), 1);
    QVERIFY2(saved.out.startsWith(u"The backup is made and checked: %1, "_s.arg(m_desk->path(backups.constFirst()))),
             qPrintable(saved.out));
    QCOMPARE(everyRow(m_desk->path(backups.constFirst())), rows);

    const Ended written = run(database + QStringList{u"--export"_s, u"items"_s, u"items.csv"_s});
    QVERIFY2(written.code == 0 && written.out.startsWith(u"Items, 23 rows, to "_s), qPrintable(written.errors));
    const Ended looked = run(database + QStringList{u"--import"_s, u"list.csv"_s, u"--dry-run"_s});
    QVERIFY2(looked.code == 0 && looked.out.endsWith(u"1 new, 0 changed, 0 unchanged, 0 refused\n"_s),
             qPrintable(looked.out + looked.errors));
    QCOMPARE(m_desk->countOf(u"StockList"_s), u"23"_s);
    const Ended read = run(database + QStringList{u"--import"_s, u"list.csv"_s});
    QVERIFY2(read.code == 0 && read.out.endsWith(u"Imported: 1 new, 0 changed\n"_s),
             qPrintable(read.out + read.errors));
    QCOMPARE(m_desk->countOf(u"StockList"_s), u"24"_s);

    const Ended restored = run(database + QStringList{u"--restore"_s, backups.constFirst()});
    QCOMPARE(restored.errors, QString());
    QCOMPARE(restored.code, 0);
    QVERIFY2(restored.out.startsWith(u"The backup is restored. The store that was there before is kept: "_s) &&
                 restored.out.contains(begin + u"-before-restore-"_s),
             qPrintable(restored.out));
    QCOMPARE(m_desk->countOf(u"StockList"_s), u"23"_s);

    const QStringList now = m_desk->everyRow();
    const Ended back = run({u"--copy-store"_s, store, u"back.sqlite"_s});
    QCOMPARE(back.errors, QString());
    QCOMPARE(back.code, 0);
    QVERIFY2(back.out.contains(
                 u"Sell from %1 from now on. What is in %2 stays"_s.arg(m_desk->path(u"back.sqlite"_s), store)),
             qPrintable(back.out));
    QCOMPARE(everyRow(m_desk->path(u"back.sqlite"_s)), now);
}

void ServerErrandsTest::storeThatCannotBeOpenedIsTold_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("said");
    const QString port = QString::number(m_desk->cluster.port());
    QTest::newRow("no such service") << u"service=nowhere"_s << u"The address of the store leads nowhere"_s;
    QTest::newRow("nobody there") << u"postgresql://postgres@127.0.0.1:1/shop"_s << u"The server cannot be reached"_s;
    QTest::newRow("no such database") << url(u"postgres"_s, u"nothing"_s)
                                      << u"The server has no database of that name"_s;
    QTest::newRow("no such user") << url(u"nobody"_s, u"shop"_s) << u"The server does not let this machine in"_s;
    QTest::newRow("no store") << url(u"postgres"_s, u"postgres"_s) << u"There is no store in that database"_s;
}

void ServerErrandsTest::storeThatCannotBeOpenedIsTold()
{
    QFETCH(const QString, address);
    QFETCH(const QString, said);
    makeStore(m_desk->path(u"shop.sqlite"_s));
    const QStringList database = {u"--database"_s, address};
    for (const QStringList &line :
         {QStringList{u"--copy-store"_s, u"shop.sqlite"_s, address}, QStringList{u"--copy-store"_s, address, u"b"_s},
          database + QStringList{u"--backup"_s, u"."_s}, database + QStringList{u"--restore"_s, u"shop.sqlite"_s},
          database + QStringList{u"--import"_s, u"list.csv"_s},
          database + QStringList{u"--export"_s, u"items"_s, u"b"_s}}) {
        const Ended refused = run(line);
        QVERIFY2(refused.errors.contains(said) && refused.out.isEmpty(), qPrintable(line.join(u' ') + refused.errors));
        QCOMPARE(refused.code, 4);
        QVERIFY(!QFile::exists(m_desk->path(u"b"_s)));
    }
}

void ServerErrandsTest::wrongLineIsRefused_data()
{
    QTest::addColumn<QStringList>("line");
    QTest::addColumn<QString>("said");
    const auto office = u"service=office_one"_s;
    QTest::newRow("server to server") << QStringList{u"--copy-store"_s, office, u"service=office_chief"_s}
                                      << u"between a store file and a server"_s;
    QTest::newRow("both and a store") << QStringList{u"--database"_s, office, u"--copy-store"_s, u"a"_s, office}
                                      << u"names both stores itself"_s;
    QTest::newRow("no target") << QStringList{u"--copy-store"_s, office} << u"needs the place of the copy"_s;
    QTest::newRow("keep none") << QStringList{u"--database"_s, office, u"--backup=."_s, u"--keep=0"_s}
                               << u"--keep takes"_s;
    QTest::newRow("no such list") << QStringList{u"--database"_s, office, u"--export"_s, u"users"_s, u"a"_s}
                                  << u"--export"_s;
}

void ServerErrandsTest::wrongLineIsRefused()
{
    QFETCH(const QStringList, line);
    QFETCH(const QString, said);
    const Ended refused = run(line);
    QVERIFY2(refused.errors.contains(said), qPrintable(refused.errors));
    QCOMPARE(refused.code, 2);
}

void ServerErrandsTest::copyOfRowsThatDoNotFitIsRefused()
{
    makeFullStore(m_desk->path(u"full.sqlite"_s));
    runAll(m_desk->path(u"full.sqlite"_s), {u"update StockList set StockCost = 'cheap' where rowid = 3"_s});
    const Ended refused = run({u"--copy-store"_s, u"full.sqlite"_s, u"service=office_one"_s});
    QCOMPARE(refused.errors, u"harrowby: A server cannot hold all rows of this store, so nothing was copied:\n"
                             "StockList, row 3, Tea: a column of figures on a server holds no text (StockCost)\n"_s);
    QCOMPARE(refused.code, 7);
    const Ended notRestored = run({u"--database=service=office_chief"_s, u"--restore"_s, u"full.sqlite"_s});
    QVERIFY2(notRestored.errors.contains(u"A server cannot hold all that is in this backup"_s) &&
                 notRestored.errors.contains(u"StockList, row 3, Tea: "_s),
             qPrintable(notRestored.errors));
    QCOMPARE(notRestored.code, 6);
    QCOMPARE(m_desk->everyRow(), QStringList());
    QCOMPARE(files(u"*-before-restore-*"_s), QStringList()); // nothing is kept for a restore that cannot be
}

void ServerErrandsTest::fullStoreIsNotCopiedOver()
{
    m_desk->fill();
    const QStringList before = m_desk->everyRow();
    makeStore(m_desk->path(u"other.sqlite"_s));
    const Ended refused = run({u"--copy-store"_s, u"other.sqlite"_s, u"service=office_chief"_s});
    QVERIFY2(refused.errors.contains(u"The server's store is not empty"_s) &&
                 refused.errors.contains(u"Users (23), InventoryCategory (23), StockList (23)"_s) &&
                 refused.errors.contains(u"--restore"_s),
             qPrintable(refused.errors));
    QCOMPARE(refused.code, 6);
    QCOMPARE(m_desk->everyRow(), before);
    const Ended taken = run({u"--copy-store"_s, u"service=office_chief"_s, u"other.sqlite"_s});
    QVERIFY2(taken.errors.contains(u"a store is copied to a new file only"_s), qPrintable(taken.errors));
    QCOMPARE(taken.code, 6);
    // What the message names does it.
    const Ended restored = run({u"--database=service=office_chief"_s, u"--restore"_s, u"other.sqlite"_s});
    QCOMPARE(restored.errors, QString());
    QCOMPARE(m_desk->countOf(u"StockList"_s), u"1"_s);
}

void ServerErrandsTest::whoMayNotIsTold_data()
{
    QTest::addColumn<QStringList>("line");
    QTest::addColumn<QString>("said");
    const QStringList till = {u"--database"_s, u"service=till_one"_s};
    const auto office = u"Use one that is enrolled as an office"_s;
    QTest::newRow("a till copies to the server")
        << QStringList{u"--copy-store"_s, u"shop.sqlite"_s, u"service=till_one"_s} << office;
    QTest::newRow("a till copies from the server")
        << QStringList{u"--copy-store"_s, u"service=till_one"_s, u"b"_s} << office;
    QTest::newRow("a till backs up") << till + QStringList{u"--backup"_s, u"."_s} << office;
    QTest::newRow("a till exports what happened") << till + QStringList{u"--export"_s, u"activity"_s, u"b"_s} << office;
    QTest::newRow("a till imports") << till + QStringList{u"--import"_s, u"list.csv"_s} << office;
    QTest::newRow("a till restores") << till + QStringList{u"--restore"_s, u"shop.sqlite"_s}
                                     << u"harrowby-server add-office NAME --owner"_s;
    QTest::newRow("an office restores") << QStringList{u"--database=service=office_one"_s, u"--restore"_s,
                                                       u"shop.sqlite"_s}
                                        << u"harrowby-server add-office NAME --owner"_s;
}

void ServerErrandsTest::whoMayNotIsTold()
{
    QFETCH(const QStringList, line);
    QFETCH(const QString, said);
    makeStore(m_desk->path(u"shop.sqlite"_s));
    const Ended refused = run(line);
    QVERIFY2(refused.errors.contains(said), qPrintable(refused.errors));
    QCOMPARE(refused.code, 6);
    QCOMPARE(m_desk->everyRow(), QStringList());
    QVERIFY(!QFile::exists(m_desk->path(u"b"_s)));
    QCOMPARE(files(u"*.db"_s), QStringList()); // no copy is kept for a restore that may not be
}

/// Of what needs the store for itself; the rest goes on beside it.
void ServerErrandsTest::openTillIsInTheWay()
{
    m_desk->fill();
    const QStringList before = m_desk->everyRow();
    // A till's service may name its connections otherwise, as those of tills that were let in long ago do.
    const auto till = openStoreRecords(m_desk->target(u"till_one"_s) + u" application_name=till_one"_s, Access::Write);
    QVERIFY2(till, till ? "" : qPrintable(till.error()));
    const QStringList database = {u"--database"_s, u"service=office_chief"_s};
    for (const QStringList &line : {database + QStringList{u"--restore"_s, u"full.sqlite"_s},
                                    QStringList{u"--copy-store"_s, u"service=office_chief"_s, u"b"_s}}) {
        const Ended refused = run(line);
        QVERIFY2(refused.errors.contains(u"which have logged in as: till_one."_s), qPrintable(refused.errors));
        QCOMPARE(refused.code, 6);
    }
    QCOMPARE(m_desk->everyRow(), before);
    QCOMPARE(run(database + QStringList{u"--backup"_s, u"."_s}).code, 0);
    QCOMPARE(run(database + QStringList{u"--export"_s, u"items"_s, u"items.csv"_s}).code, 0);
    QCOMPARE(run(database + QStringList{u"--import"_s, u"list.csv"_s}).code, 0);
}

void ServerErrandsTest::failedErrandsAreTold()
{
    m_desk->fill();
    const QStringList database = {u"--database"_s, u"service=office_chief"_s};
    const Ended noFolder = run(database + QStringList{u"--backup"_s, u"missing/folder"_s});
    QVERIFY2(noFolder.code == 6 && noFolder.errors.contains(u"missing/folder"_s), qPrintable(noFolder.errors));
    const Ended noBackup = run(database + QStringList{u"--restore"_s, u"none.db"_s});
    QVERIFY2(noBackup.code == 6 && noBackup.errors.contains(u"There is no file"_s), qPrintable(noBackup.errors));
    const Ended noList = run(database + QStringList{u"--import"_s, u"none.csv"_s});
    QVERIFY2(noList.code == 6 && noList.errors.contains(u"cannot be read"_s), qPrintable(noList.errors));
    write(u"bad.csv"_s, "StockID,StockName,StockCost\nNEW-2,cake,2.50\n");
    const Ended refusedRow = run(database + QStringList{u"--import"_s, u"bad.csv"_s});
    QVERIFY2(refusedRow.code == 7 && refusedRow.out.contains(u"It is not in capitals."_s), qPrintable(refusedRow.out));
}

HARROWBY_CORE_TEST(app_server_errands_test, ServerErrandsTest)
#include "server_errands_test.moc"
