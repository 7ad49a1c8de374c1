// SPDX-License-Identifier: MIT
#include "app/shop/busy_wait.h"
#include "app/shop/store_judge.h"
#include "app/shop/store_open.h"
#include "tests/app/quick_folder.h"
#include "tests/app/shop_place.h"
#include "tests/app/store_files.h"
#include "tests/program/test_program.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QProcessEnvironment>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>
#include <functional>

using namespace Qt::StringLiterals;
using namespace harrowby::app;
using namespace harrowby::app::test;

namespace {

struct ErrandEnd
{
    int code = -1;
    QString out;
    QString errors;
};

} // namespace

/// What the real program does without a display.
class ErrandsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void backupIsMade();
    void refusedStoreIsTold_data();
    void refusedStoreIsTold();
    void backupThatFailsIsTold();
    void backupsAreKept();
    void wrongNumberIsRefused_data();
    void wrongNumberIsRefused();
    void fullDiskKeepsTheOldBackup();
    void killedBackupLeavesNothing();
    void listsAreExported();
    void activityIsWritten();
    void wrongExportIsRefused_data();
    void wrongExportIsRefused();
    void fullDiskKeepsTheOldList();
    void backupIsRestored();
    void fileIsNoServer();
    void fileIsImported();
    void columnsOfAnImportAreTold();
    void wrongImportIsRefused_data();
    void wrongImportIsRefused();

private:
    void write(const QString &name, const QByteArray &text) const;
    [[nodiscard]] QString path(const QString &name) const { return m_home->filePath(name); }
    [[nodiscard]] QStringList away() const
    {
        return QDir(path(u"away"_s)).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }
    void prepare(QProcess &process) const;
    [[nodiscard]] ErrandEnd run(const QStringList &arguments, const std::function<void()> &inChild = {}) const;

    std::unique_ptr<QTemporaryDir> m_home;
    std::unique_ptr<ShopPlace> m_place;
    QString m_store; ///< as the command line gets it
};

void ErrandsTest::init()
{
    m_home = std::make_unique<QTemporaryDir>(quickFolder() + u"/errands-XXXXXX"_s);
    m_place = std::make_unique<ShopPlace>(path(u"shop.sqlite"_s));
    m_store = harrowby::test::isOnServer(m_place->address()) ? m_place->address() : u"shop.sqlite"_s;
    makeStore(m_place->address());
    QVERIFY(QDir(m_home->path()).mkdir(u"away"_s));
}

void ErrandsTest::write(const QString &name, const QByteArray &text) const
{
    QFile file(path(name));
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(text) == text.size());
}

void ErrandsTest::prepare(QProcess &process) const
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const QString &name : {u"DISPLAY"_s, u"WAYLAND_DISPLAY"_s, u"QT_QPA_PLATFORM"_s, u"XDG_SESSION_TYPE"_s})
        environment.remove(name);
    environment.insert(u"HOME"_s, m_home->path());
    environment.insert(u"XDG_DATA_HOME"_s, path(u"data"_s));
    environment.insert(u"XDG_CONFIG_HOME"_s, path(u"config"_s));
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(m_home->path());
}

ErrandEnd ErrandsTest::run(const QStringList &arguments, const std::function<void()> &inChild) const
{
    QProcess process;
    prepare(process);
    if (inChild)
        process.setChildProcessModifier(inChild);
    process.start(QStringLiteral(HARROWBY_PROGRAM), arguments);
    if (!process.waitForFinished(60000))
        return {};
    const int code = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    return {code, QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

void ErrandsTest::backupIsMade()
{
    const ErrandEnd outcome = run({u"--backup"_s, u"away"_s, u"--database"_s, u"shop.sqlite"_s});
    QCOMPARE(outcome.errors, QString());
    QCOMPARE(outcome.code, 0);
    QCOMPARE(away().size(), 1);
    const QString made = path(u"away/"_s + away().constFirst());
    static const QRegularExpression form(u"^shop-\\d{4}-\\d\\d-\\d\\d-\\d{6}-[0-9a-f]{8}\\.db$"_s);
    QVERIFY2(form.match(away().constFirst()).hasMatch(), qPrintable(made));
    QVERIFY2(outcome.out.contains(made), qPrintable(outcome.out));
    BusyWait wait;
    QVERIFY(!judgeStore(made, wait));
    QCOMPARE(column(made, u"SELECT StockName FROM StockList"_s), QStringList{u"TEA"_s});
}

void ErrandsTest::refusedStoreIsTold_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("said");
    QTest::newRow("missing") << u"none.sqlite"_s << u"no store file"_s;
    QTest::newRow("no store") << u"text"_s << u"not an SQLite database"_s;
    QTest::newRow("in memory") << u":memory:"_s << u"no store file"_s;
}

void ErrandsTest::refusedStoreIsTold()
{
    QFETCH(QString, name);
    QFETCH(QString, said);
    QFile text(path(u"text"_s));
    QVERIFY(text.open(QIODevice::WriteOnly) && text.write(QByteArray(2000, 't')) == 2000 && text.flush());
    const ErrandEnd outcome = run({u"--database"_s, name, u"--backup"_s, path(u"away"_s)});
    QCOMPARE(outcome.code, 4);
    QVERIFY2(outcome.errors.contains(name) && outcome.errors.contains(said), qPrintable(outcome.errors));
    QVERIFY(away().isEmpty());
    QVERIFY(!QFile::exists(path(u"none.sqlite"_s)));
}

void ErrandsTest::backupThatFailsIsTold()
{
    const QStringList backup = {u"--database"_s, path(u"shop.sqlite"_s), u"--backup"_s, path(u"missing/folder"_s)};
    const ErrandEnd outcome = run(backup);
    QCOMPARE(outcome.code, 6);
    QVERIFY2(outcome.errors.contains(path(u"missing/folder"_s)), qPrintable(outcome.errors));
    QVERIFY(!QFile::exists(path(u"missing"_s)));
}

void ErrandsTest::backupsAreKept()
{
    const QStringList backup = {u"--database"_s, u"shop.sqlite"_s, u"--backup"_s, u"away"_s, u"--keep"_s, u"2"_s};
    for (int times = 0; times < 3; ++times)
        QCOMPARE(run(backup).code, 0);
    QCOMPARE(away().size(), 2);
    // What the store says of them.
    const QString shop = path(u"shop.sqlite"_s);
    QVERIFY(column(shop, u"select Value from HarrowbySetting where Name = 'GoodBackups'"_s)
                .constFirst()
                .contains(away().constLast()));
    QCOMPARE(column(shop, u"select Kind from HarrowbyActivity"_s), QStringList(3, u"BackedUp"_s));
    QVERIFY(column(shop, u"select Who from HarrowbyActivity"_s).constFirst().startsWith(u"command line"_s));
}

void ErrandsTest::wrongNumberIsRefused_data()
{
    QTest::addColumn<QString>("number");
    for (const QString &number : {u"0"_s, u"-1"_s, u"many"_s, u"10000"_s, u"2.5"_s})
        QTest::newRow(qPrintable(number)) << number;
}

void ErrandsTest::wrongNumberIsRefused()
{
    QFETCH(QString, number);
    const ErrandEnd outcome = run({u"--database=shop.sqlite"_s, u"--backup=away"_s, u"--keep"_s, number});
    QCOMPARE(outcome.code, 2);
    QVERIFY2(outcome.errors.contains(u"--keep takes"_s), qPrintable(outcome.errors));
    QVERIFY(away().isEmpty());
}

void ErrandsTest::fullDiskKeepsTheOldBackup()
{
    const QStringList backup = {u"--database=shop.sqlite"_s, u"--backup=away"_s, u"--keep=1"_s};
    QCOMPARE(run(backup).code, 0);
    const QStringList before = away();
    runAll(path(u"shop.sqlite"_s), {u"INSERT INTO SysUsage VALUES (hex(zeroblob(2000000)), '', '')"_s});
    const ErrandEnd outcome = run(backup, [] {
        ::signal(SIGXFSZ, SIG_IGN);
        const rlimit full = {1000000, 1000000};
        ::setrlimit(RLIMIT_FSIZE, &full);
    });
    QCOMPARE(outcome.code, 6);
    QVERIFY2(outcome.errors.contains(u"place of the backup"_s), qPrintable(outcome.errors));
    QCOMPARE(away(), before);
}

void ErrandsTest::killedBackupLeavesNothing()
{
    runAll(path(u"shop.sqlite"_s), {u"INSERT INTO SysUsage VALUES (hex(zeroblob(20000000)), '', '')"_s});
    const QStringList backup = {u"--database=shop.sqlite"_s, u"--backup=away"_s, u"--keep=1"_s};
    QCOMPARE(run(backup).code, 0);
    const QStringList before = away();
    QProcess process;
    prepare(process);
    process.start(QStringLiteral(HARROWBY_PROGRAM), backup);
    QTRY_VERIFY_WITH_TIMEOUT(away() != before, 30000); // it has begun
    process.kill();
    QVERIFY(process.waitForFinished());
    QVERIFY(away().contains(before.constFirst()));
    for (const QString &name : away()) {
        if (name.endsWith(u".db"_s)) // it may have been quicker
            QCOMPARE(column(path(u"away/"_s + name), u"PRAGMA quick_check"_s), QStringList{u"ok"_s});
    }
    QCOMPARE(run(backup).code, 0);
    QCOMPARE(away().size(), 1);
}

void ErrandsTest::listsAreExported()
{
    const ErrandEnd outcome = run({u"--export"_s, u"items"_s, u"away/items.csv"_s, u"--database"_s, m_store,
                                   u"--separator"_s, u"semicolon"_s, u"--decimal"_s, u"comma"_s});
    QCOMPARE(outcome.errors, QString());
    QCOMPARE(outcome.code, 0);
    QCOMPARE(outcome.out, u"Items, 1 row, to %1\n"_s.arg(path(u"away/items.csv"_s)));
    QFile made(path(u"away/items.csv"_s));
    QVERIFY(made.open(QIODevice::ReadOnly));
    QVERIFY(made.readAll().startsWith("StockID;StockName;StockCategory;StockCost;"));
    QCOMPARE(column(m_place->address(), u"SELECT Kind || ' ' || What FROM HarrowbyActivity"_s),
             QStringList(u"Exported "_s + outcome.out.chopped(1)));
    const ErrandEnd none = run({u"--export"_s, u"Purchases"_s, u"away/items.csv"_s, u"--database"_s, m_store,
                                u"--from"_s, u"2019-01-01"_s, u"--to"_s, u"yesterday"_s});
    QCOMPARE(none.errors, QString());
    QVERIFY(none.out.startsWith(u"Purchases 2019-01-01 to "_s));
    QCOMPARE(away(), QStringList(u"items.csv"_s));
}

void ErrandsTest::activityIsWritten()
{
    const QStringList items = {u"--export"_s, u"items"_s, u"away/items.csv"_s, u"--database"_s, m_store};
    QCOMPARE(run(items).code, 0);
    const ErrandEnd outcome = run({u"--export"_s, u"activity"_s, u"away/activity.csv"_s, u"--from"_s, u"yesterday"_s,
                                   u"--separator"_s, u"semicolon"_s, u"--database"_s, m_store});
    QCOMPARE(outcome.errors, QString());
    QCOMPARE(outcome.out, u"Activity, 1 row, to %1\n"_s.arg(path(u"away/activity.csv"_s)));
    QFile made(path(u"away/activity.csv"_s));
    QVERIFY(made.open(QIODevice::ReadOnly));
    const QStringList lines = QString::fromUtf8(made.readAll()).split(u"\r\n"_s);
    QCOMPARE(lines.value(0), u"Time;Kind;User;Place;What"_s);
    QVERIFY2(lines.value(1).contains(u";Catalogue and codes;command line"_s), qPrintable(lines.value(1)));
    QVERIFY2(lines.value(1).contains(u"Items, 1 row, to "_s), qPrintable(lines.value(1)));
    const ErrandEnd before = run(
        {u"--export"_s, u"activity"_s, u"away/activity.csv"_s, u"--to"_s, u"2019-01-01"_s, u"--database"_s, m_store});
    QVERIFY2(before.out.startsWith(u"Activity, 0 rows"_s), qPrintable(before.out));
}

void ErrandsTest::wrongExportIsRefused_data()
{
    QTest::addColumn<QStringList>("given");
    QTest::addColumn<QString>("said");
    const QStringList purchases = {u"--export"_s, u"purchases"_s, u"away/x.csv"_s};
    QTest::newRow("nothing") << QStringList(u"--export"_s) << u"--export needs what is exported"_s;
    QTest::newRow("no file") << QStringList{u"--export"_s, u"items"_s} << u"--export needs a file"_s;
    QTest::newRow("unknown list") << QStringList{u"--export"_s, u"users"_s, u"away/x.csv"_s} << u"takes items,"_s;
    QTest::newRow("separator") << purchases + QStringList{u"--separator"_s, u":"_s} << u"--separator takes"_s;
    QTest::newRow("decimal sign") << purchases + QStringList{u"--decimal"_s, u";"_s} << u"--decimal takes"_s;
    QTest::newRow("no day") << purchases + QStringList{u"--from"_s, u"2026-02-30"_s} << u"--from takes a day"_s;
    QTest::newRow("days around") << purchases + QStringList{u"--from"_s, u"2026-02-02"_s, u"--to"_s, u"2026-02-01"_s}
                                 << u"later than"_s;
    QTest::newRow("days of items") << QStringList{u"--export"_s, u"items"_s, u"away/x.csv"_s, u"--from"_s, u"today"_s}
                                   << u"with purchases and activity only"_s;
}

void ErrandsTest::wrongExportIsRefused()
{
    QFETCH(const QStringList, given);
    const ErrandEnd outcome = run(given + QStringList{u"--database"_s, m_store});
    QCOMPARE(outcome.code, 2);
    QFETCH(const QString, said);
    QVERIFY2(outcome.errors.contains(said), qPrintable(outcome.errors));
    QVERIFY(away().isEmpty());
}

void ErrandsTest::fullDiskKeepsTheOldList()
{
    const QStringList arguments = {u"--export"_s, u"items"_s, u"away/items.csv"_s, u"--database"_s, m_store};
    QCOMPARE(run(arguments).code, 0);
    runAll(m_place->address(),
           {u"WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 5000) INSERT INTO "
            "StockList (StockID, StockName) SELECT i, 'A NAME' FROM n"_s});
    const ErrandEnd outcome = run(arguments, [] {
        const rlimit most = {100'000, 100'000};
        ::setrlimit(RLIMIT_FSIZE, &most);
        std::signal(SIGXFSZ, SIG_IGN);
    });
    QCOMPARE(outcome.code, 6);
    QVERIFY2(outcome.errors.contains(u"could not be written to its place"_s), qPrintable(outcome.errors));
    QCOMPARE(away(), QStringList(u"items.csv"_s));
    QFile list(path(u"away/items.csv"_s));
    QVERIFY(list.size() > 0 && list.size() < 1000);
}

void ErrandsTest::backupIsRestored()
{
    const QString shop = path(u"shop.sqlite"_s);
    QCOMPARE(run({u"--database=shop.sqlite"_s, u"--backup=away"_s}).code, 0);
    const QString backup = path(u"away/"_s + away().constFirst());
    runAll(shop, {u"UPDATE StockList SET StockName = 'LATER'"_s});
    const QStringList restoring = {u"--database=shop.sqlite"_s, u"--restore"_s, backup};
    {
        BusyWait wait;
        const auto till = openStore(shop, wait);
        QVERIFY(till);
        const ErrandEnd refused = run(restoring);
        QCOMPARE(refused.code, 6);
        QVERIFY2(refused.errors.contains(u"(process %1)"_s.arg(QCoreApplication::applicationPid())),
                 qPrintable(refused.errors));
        QCOMPARE(column(shop, u"SELECT StockName FROM StockList"_s), QStringList{u"LATER"_s});
    }
    const ErrandEnd outcome = run(restoring);
    QCOMPARE(outcome.errors, QString());
    QCOMPARE(outcome.code, 0);
    QCOMPARE(column(shop, u"SELECT StockName FROM StockList"_s), column(backup, u"SELECT StockName FROM StockList"_s));
    QVERIFY2(outcome.out.contains(u"shop-before-restore-"_s), qPrintable(outcome.out));

    spoil(shop, 0, 60); // a start names the way, which works
    const QString line = u"harrowby --restore BACKUP --database \"%1\""_s.arg(shop);
    const ErrandEnd start = run({u"--database=shop.sqlite"_s, u"--backup=away"_s});
    QCOMPARE(start.code, 4);
    QVERIFY2(start.errors.contains(line), qPrintable(start.errors));
    const ErrandEnd mended = run(restoring);
    QCOMPARE(mended.errors, QString());
    QCOMPARE(mended.code, 0);
    QVERIFY2(mended.out.contains(u"/shop-damaged-before-restore-"_s), qPrintable(mended.out));
    QCOMPARE(column(shop, u"SELECT StockName FROM StockList"_s), column(backup, u"SELECT StockName FROM StockList"_s));
    QCOMPARE(run({u"--database=none"_s, u"--restore"_s, backup}).code, 4);
    QVERIFY(!QFile::exists(path(u"none"_s)));
}

void ErrandsTest::fileIsNoServer()
{
    const ErrandEnd outcome = run({u"--copy-store"_s, u"shop.sqlite"_s, u"other.sqlite"_s});
    QCOMPARE(outcome.code, 2);
    QVERIFY2(outcome.errors.contains(u"between a store file and a server"_s), qPrintable(outcome.errors));
    QVERIFY(!QFile::exists(path(u"other.sqlite"_s)));
}

void ErrandsTest::fileIsImported()
{
    write(u"list.csv"_s, "Artikelnummer;Bezeichnung;Preis\nTEA-0001;;3,50\nNEW;Tee;1,25\n");
    const QStringList order = {u"--database"_s, m_store, u"--import"_s, u"list.csv"_s};
    const QString prices = u"SELECT StockID || ' ' || StockName || ' ' || StockCost FROM StockList ORDER BY 1"_s;
    const QString seen = u"list.csv: items, UTF-8, Semicolon ( ; ), decimal comma\n"
                         "StockID ← Artikelnummer\nStockName ← Bezeichnung\nStockCost ← Preis\n"
                         "0 new, 1 changed, 0 unchanged, 1 refused\n"
                         "Line 3, Bezeichnung: It is not in capitals.\n"_s;
    for (const QStringList &options : {QStringList{u"--dry-run"_s}, QStringList()}) {
        const ErrandEnd refused = run(order + options);
        QCOMPARE(refused.out, seen);
        QCOMPARE(refused.code, 7);
        QCOMPARE(column(m_place->address(), prices), QStringList{u"TEA-0001 TEA 2.5"_s});
    }
    const ErrandEnd valid = run(order + QStringList{u"--valid-rows"_s});
    QVERIFY2(valid.out.startsWith(seen) && valid.out.contains(u"harrowby-before-import-"_s) &&
                 valid.out.endsWith(u"Imported: 0 new, 1 changed\n"_s),
             qPrintable(valid.out));
    QCOMPARE(valid.code, 7);
    const ErrandEnd whole = run(order + QStringList{u"--capitals"_s, u"--kind"_s, u"Items"_s});
    QVERIFY2(whole.code == 0 && whole.out.endsWith(u"Imported: 1 new, 0 changed\n"_s), qPrintable(whole.out));
    QCOMPARE(column(m_place->address(), prices), (QStringList{u"NEW TEE 1.25"_s, u"TEA-0001 TEA 3.5"_s}));
    QCOMPARE(run(order + QStringList{u"--capitals"_s, u"--dry-run"_s}).code, 0);
}

void ErrandsTest::columnsOfAnImportAreTold()
{
    write(u"two.csv"_s, "StockID,Name,Unit Cost,Price\nTEA-0001,GREEN,0.80,1.50\n");
    const QStringList order = {u"--database"_s, m_store, u"--import"_s, u"two.csv"_s};
    const ErrandEnd refused = run(order);
    QCOMPARE(refused.code, 6);
    QVERIFY2(refused.errors.contains(u"can be StockCost: \"Price\", \"Unit Cost\"."_s), qPrintable(refused.errors));
    QCOMPARE(run(order + QStringList{u"--columns"_s, u"StockCost=None"_s}).code, 6);
    QCOMPARE(run(order + QStringList{u"--columns"_s, u"Colour=Price"_s}).code, 6);
    QCOMPARE(run(order + QStringList{u"--columns"_s, u"Price"_s}).code, 2);
    const ErrandEnd given = run(order + QStringList{u"--columns"_s, u"StockCost=price"_s});
    QVERIFY2(
        given.out.startsWith(
            u"two.csv: items, UTF-8, Comma ( , ), decimal point\nStockID ← StockID\nStockName ← Name\n"
            "StockCost ← Price\nNot used: \"Unit Cost\"\n0 new, 1 changed, 0 unchanged, 0 refused\n"
            "1 item gets another name: tills that are open show the old one until their pages are loaded again\n"_s),
        qPrintable(given.out));
    QCOMPARE(given.code, 0);
    QCOMPARE(column(m_place->address(), u"SELECT StockCost FROM StockList"_s), QStringList{u"1.5"_s});
}

void ErrandsTest::wrongImportIsRefused_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("said");
    QTest::newRow("no file") << QStringList{} << 2 << u"--import needs the file that is imported."_s;
    QTest::newRow("kind") << QStringList{u"either.csv"_s, u"--kind"_s, u"users"_s} << 2 << u"--kind takes items"_s;
    QTest::newRow("encoding") << QStringList{u"either.csv"_s, u"--encoding"_s, u"ascii"_s} << 2
                              << u"--encoding takes"_s;
    QTest::newRow("missing") << QStringList{u"none.csv"_s} << 6 << u"cannot be read"_s;
    QTest::newRow("either sign") << QStringList{u"either.csv"_s, u"--dry-run"_s} << 6 << u"(1,234 in line 2)"_s;
    QTest::newRow("no headings") << QStringList{u"bare.csv"_s} << 6
                                 << u"The first line of \"bare.csv\" looks like a row"_s;
    QTest::newRow("pipe") << QStringList{u"pipe"_s} << 6 << u"cannot be read"_s;
}

void ErrandsTest::wrongImportIsRefused()
{
    QFETCH(QStringList, options);
    QFETCH(int, code);
    QFETCH(QString, said);
    write(u"bare.csv"_s, "TEA-0001,TEA,2.60\nNEW,CAKE,1\n");
    write(u"either.csv"_s, "StockID;Price\nTEA-0001;1,234\n");
    QCOMPARE(::mkfifo(qPrintable(path(u"pipe"_s)), 0600), 0);
    const ErrandEnd refused = run(QStringList{u"--database"_s, m_store, u"--import"_s} + options);
    QCOMPARE(refused.code, code);
    QVERIFY2(refused.errors.contains(said), qPrintable(refused.errors));
    QCOMPARE(refused.out, QString());
}

HARROWBY_CORE_TEST(app_errands_test, ErrandsTest)
#include "errands_test.moc"
