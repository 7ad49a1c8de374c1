// SPDX-License-Identifier: MIT
#include "app/backup/kept_backups.h"
#include "app/catalogue/catalogue_import.h"
#include "app/catalogue/import_columns.h"
#include "app/records/deeds.h"
#include "app/records/store_records.h"
#include "tests/app/quick_folder.h"
#include "tests/app/selling_till.h"
#include "tests/app/shop_place.h"
#include "tests/doubles/database.h"
#include "tests/doubles/private_cluster.h"
#include "tests/program/test_program.h"
#include "tests/support/till.h"

#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QThread>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;
using namespace harrowby::app::test;

namespace {

using harrowby::test::Database;
using harrowby::test::ForkedProcess;
using harrowby::test::PrivateCluster;

constexpr int itemsOfTheShop = 12;
constexpr int usualSales = 2'000;      ///< of both tills
constexpr unsigned long pause = 1'000; ///< between two imports or backups, ms: the tills are to get on

bool goesOn(const WorkStep &)
{
    return true;
}

int failed(const QString &why)
{
    harrowby::test::say(u"FAILED "_s + why);
    return 1;
}

/// The real window, so many times.
int sellTimes(const QString &store, int times, quint32 seed)
{
    harrowby::test::Till till(store, harrowby::test::Till::Pace::Hurried);
    till.logIn(u"JACK"_s, u"PASS"_s);
    QRandomGenerator random(seed);
    for (int sale = 0; sale < times; ++sale) {
        till.sell(random);
        harrowby::test::say(u"SOLD"_s);
    }
    return 0;
}

QByteArray deliveredItems(QRandomGenerator &random)
{
    QByteArray text = "StockID,StockCost,StockAvailable\n";
    for (int item = 0; item < itemsOfTheShop; ++item) {
        if (random.bounded(3) > 0)
            text += 'A' + QByteArray::number(item) + ',' + QByteArray::number(random.bounded(1, 5)) + ".5," +
                    QByteArray::number(random.bounded(80'000, 90'000)) + '\n';
    }
    return text;
}

/// By how much an import has changed the stock of all items; asked at once, as only the latest ones are kept row by
/// row.
int changeBy(const QString &store, std::int64_t import)
{
    return Database(store)
        .rows(
            u"SELECT coalesce(sum(r.NewAvailable - r.OldAvailable), 0) FROM HarrowbyImportRow r JOIN HarrowbyImport i "
            "USING (ImportID) WHERE i.ImportID = %1 AND r.What = 2 AND (r.Mask & 16) <> 0 AND "
            "(r.LeftOut = 2 OR (r.LeftOut = 0 AND coalesce(i.TakenBackAt, '') = ''))"_s.arg(import))
        .value(0)
        .section(u'|', 0, 0)
        .toInt();
}

/// One list after the other, with the stock in hand; some are taken back. Tells by how much each has changed the stock.
int importUntil(const QString &store, const QString &folder, const QString &end)
{
    const auto own = openStoreRecords(store, Access::Write);
    if (!own)
        return failed(own.error());
    ImportDesk desk;
    desk.user = desk.who = u"ANNA"_s;
    desk.place = officePlace;
    desk.store = store;
    desk.backupFolder = folder;
    CatalogueImport import((*own)->records(), desk);
    QRandomGenerator random(7);
    for (int round = 0; !QFile::exists(end); ++round) {
        const ImportFile file = {u"list.csv"_s, deliveredItems(random), QString::number(round)};
        ImportChoices choices;
        choices.columns = matchColumns(ImportKind::Items, headingsOf(file.bytes, choices.form));
        choices.stockInHand = true;
        const auto staged = import.stage(file, choices, goesOn);
        if (!staged)
            return failed(staged.error().words);
        if (const auto done = import.apply(staged->id, true, &file, goesOn); !done)
            return failed(done.error().words);
        if (random.bounded(3) == 0) {
            if (const auto back = import.takeBack(staged->id, goesOn); !back)
                return failed(back.error().words);
        }
        harrowby::test::say(u"IMPORTED %1"_s.arg(changeBy(store, staged->id)));
        QThread::msleep(pause);
    }
    return 0;
}

int backUpUntil(const QString &store, const QString &folder, const QString &end)
{
    QDateTime moment(QDate(2026, 3, 5), QTime(12, 0));
    while (!QFile::exists(end)) {
        moment = moment.addSecs(1);
        const KeptBackup made = keepBackup(store, folder, 0, moment, [](const BackupProgress &) { return true; });
        harrowby::test::say(made.result.outcome == BackupResult::Outcome::Done ? u"BACKED UP"_s
                                                                               : u"FAILED "_s + made.result.problem);
        QThread::msleep(pause);
    }
    return 0;
}

} // namespace

/// Two tills, an office that imports lists of the items that they sell, and backups, all at once on a server: each sale
/// that was made is there, the stock is exact, and each backup is a whole store. HARROWBY_SALES makes more of them.
class BusyShopTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void stockIsExact();

private:
    void checkStock(const QByteArray &imported) const;
    void checkBackups(const QString &folder) const;

    QString m_store;
};

void BusyShopTest::initTestCase()
{
    if (const QString missing = PrivateCluster::missing(); !missing.isEmpty())
        QSKIP(qPrintable(missing));
}

/// What the imports have made of it, less what was sold.
void BusyShopTest::checkStock(const QByteArray &imported) const
{
    int change = 0;
    for (const QByteArray &line : imported.split('\n'))
        change += line.startsWith("IMPORTED ") ? line.mid(9).toInt() : 0;
    QVERIFY(change != 0);
    const QString now = Database(m_store).rows(u"SELECT sum(StockAvailable) FROM StockList"_s).value(0);
    QCOMPARE(now.section(u'|', 0, 0).toInt(), itemsOfTheShop * stockOfEach + change - unitsSold(m_store));
}

void BusyShopTest::checkBackups(const QString &folder) const
{
    const QStringList backups = keptBackups(folder, m_store);
    QVERIFY(!backups.isEmpty());
    qsizetype later = -1; // the newest comes first
    for (const QString &path : backups) {
        const Database backup(path, true);
        QCOMPARE(backup.integrity(), u"ok"_s);
        QCOMPARE(backup.rows(u"SELECT 1 FROM StockList"_s).size(), itemsOfTheShop);
        const qsizetype purchases = backup.rows(u"SELECT 1 FROM PurchaseCart"_s).size();
        QVERIFY(later < 0 || purchases <= later);
        later = purchases;
    }
}

void BusyShopTest::stockIsExact()
{
    const QTemporaryDir folder(quickFolder() + u"/busy-XXXXXX"_s);
    const QTemporaryDir backups(quickFolder() + u"/busy-XXXXXX"_s);
    const QString end = folder.filePath(u"end"_s);
    const ShopPlace place(folder.filePath(u"shop.sqlite"_s));
    m_store = place.address();
    makeSellingStore(m_store, itemsOfTheShop);
    {
        const harrowby::test::Till till(m_store,
                                        harrowby::test::Till::Pace::Hurried); // what is copied has had a window
    }
    const int sales = wanted("HARROWBY_SALES", usualSales);
    ForkedProcess one([&] { return sellTimes(m_store, sales / 2, 1); });
    ForkedProcess other([&] { return sellTimes(m_store, sales - sales / 2, 2); });
    ForkedProcess office([&] { return importUntil(m_store, folder.path(), end); });
    ForkedProcess night([&] { return backUpUntil(m_store, backups.path(), end); });
    int sold = 0;
    for (ForkedProcess *till : {&one, &other})
        sold += static_cast<int>(allSaid(*till).count("SOLD"));
    QVERIFY(QFile(end).open(QIODevice::WriteOnly));
    const QByteArray imported = allSaid(office);
    const QByteArray made = allSaid(night);
    for (ForkedProcess *process : {&one, &other, &office, &night}) {
        process->kill();
        QVERIFY(process->hasEnded());
    }
    QCOMPARE(sold, sales);
    QCOMPARE(Database(m_store).rows(u"SELECT DISTINCT PurchaseID FROM PurchaseCart"_s).size(), sales);
    QVERIFY2(!imported.contains("FAILED") && imported.count("IMPORTED") > 1, imported.constData());
    QVERIFY2(!made.contains("FAILED") && made.count("BACKED UP") > 1, made.constData());
    checkStock(imported);
    checkBackups(backups.path());
    qInfo("%d sales, %lld imports, %lld backups", sold, static_cast<long long>(imported.count("IMPORTED")),
          static_cast<long long>(made.count("BACKED UP")));
}

HARROWBY_TEST(app_busy_shop_test, BusyShopTest)
#include "busy_shop_test.moc"
