// SPDX-License-Identifier: MIT
#include "app/catalogue/catalogue_import.h"
#include "app/catalogue/import_columns.h"
#include "app/codes/code_table.h"
#include "app/records/deeds.h"
#include "app/records/store_records.h"
#include "tests/app/quick_folder.h"
#include "tests/app/selling_till.h"
#include "tests/doubles/database.h"
#include "tests/program/test_program.h"
#include "tests/support/till.h"

#include <QDir>
#include <QFile>
#include <QMap>
#include <QRandomGenerator>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;
using namespace harrowby::app::test;

namespace {

using harrowby::test::Database;
using harrowby::test::ForkedProcess;

constexpr int itemsInTheStore = 12;
constexpr int importsOfEach = 5; ///< of so many in all the rows are kept

bool nothingStopsIt(const WorkStep &)
{
    return true;
}

/// Some of the items, with another price and another stock in hand.
QByteArray someItems(QRandomGenerator &random)
{
    QByteArray text = "StockID,StockCost,StockAvailable\n";
    for (int item = 0; item < itemsInTheStore; ++item) {
        if (random.bounded(3) > 0)
            text += 'A' + QByteArray::number(item) + ',' + QByteArray::number(random.bounded(1, 5)) + ".5," +
                    QByteArray::number(random.bounded(50'000, 90'000)) + '\n';
    }
    return text;
}

/// An office that imports lists of items, takes some of them back, and adds codes. It says what it has done.
int work(const QString &path, const QString &folder, const QString &name, quint32 seed)
{
    const auto own = openStoreRecords(path, Access::Write);
    if (!own)
        return 1;
    Records &records = (*own)->records();
    ImportDesk desk;
    desk.user = desk.who = name;
    desk.place = officePlace;
    desk.store = path;
    desk.backupFolder = folder;
    CatalogueImport import(records, desk);
    CodeTable codes(records, SignedDeeds(records, officePlace, name));
    QRandomGenerator random(seed);
    for (int round = 0; round < importsOfEach; ++round) {
        const ImportFile file = {u"list.csv"_s, someItems(random), QString::number(round)};
        ImportChoices choices;
        choices.columns = matchColumns(ImportKind::Items, headingsOf(file.bytes, choices.form));
        choices.stockInHand = true;
        const auto staged = import.stage(file, choices, nothingStopsIt);
        if (!staged || !import.apply(staged->id, true, &file, nothingStopsIt))
            return 2;
        harrowby::test::say(u"IMPORTED"_s);
        if (random.bounded(3) == 0) {
            if (!import.takeBack(staged->id, nothingStopsIt))
                return 3;
            harrowby::test::say(u"TAKEN BACK"_s);
        }
        const QString code = u"%1-%2"_s.arg(name).arg(round);
        if (codes.add(code, u"A%1"_s.arg(random.bounded(itemsInTheStore)), 1))
            return 4;
        harrowby::test::say(u"CODE "_s + code);
    }
    return 0;
}

} // namespace

/// Two offices import lists of the same items, with their stocks, and add codes, while a till sells them: no price that
/// one has set, no sale, no code and no deed is lost. HARROWBY_ROUNDS does so more often, HARROWBY_SEED begins
/// elsewhere.
class OfficesAtOnceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nothingIsLost();

private:
    void checkOneDay(quint32 seed);
    void checkPrices(const QString &store);
    void checkStock(const QString &store) const;
    int m_leftOut = 0;
};

/// Each price but the last of an item was the old one of the next change: whoever changes it has seen it.
void OfficesAtOnceTest::checkPrices(const QString &store)
{
    const Database file(store);
    for (int item = 0; item < itemsInTheStore; ++item) {
        QMap<double, int> open = {{1.5, 1}}; // set, and not yet replaced
        const QStringList rows = file.rows(
            u"SELECT r.OldCost, r.NewCost, i.TakenBackAt IS NOT NULL AND i.TakenBackAt <> '', r.LeftOut, "
            "r.ImportID, r.Mask, r.OldAvailable, r.NewAvailable FROM HarrowbyImportRow r JOIN HarrowbyImport i "
            "USING (ImportID) WHERE r.StockID = 'A%1' AND r.What = 2"_s.arg(item));
        for (const QString &row : rows) {
            const QStringList cells = row.split(u'|');
            m_leftOut += cells.at(3) == u"1"_s ? 1 : 0;
            const bool isBack = cells.at(2) == u"1"_s && cells.at(3) == u"0"_s;
            if (cells.at(3) == u"1"_s || isBack || cells.at(0).toDouble() == cells.at(1).toDouble())
                continue;
            --open[cells.at(0).toDouble()];
            ++open[cells.at(1).toDouble()];
        }
        const QString last = file.rows(u"SELECT StockCost FROM StockList WHERE StockID = 'A%1'"_s.arg(item))
                                 .value(0)
                                 .section(u'|', 0, 0);
        --open[last.toDouble()];
        const auto words = u"A%1: %2 was overwritten unseen\n"_s;
        for (auto price = open.cbegin(); price != open.cend(); ++price)
            QVERIFY2(price.value() == 0, qPrintable(words.arg(item).arg(price.key()) + rows.join(u'\n')));
    }
}

/// Each stock is what the imports have made of it, less what was sold.
void OfficesAtOnceTest::checkStock(const QString &store) const
{
    const Database file(store);
    const int set = file.rows(u"SELECT coalesce(sum(r.NewAvailable - r.OldAvailable), 0) FROM HarrowbyImportRow r "
                              "JOIN HarrowbyImport i USING (ImportID) WHERE r.What = 2 AND (r.Mask & 16) <> 0 AND "
                              "(r.LeftOut = 2 OR (r.LeftOut = 0 AND coalesce(i.TakenBackAt, '') = ''))"_s)
                        .value(0)
                        .section(u'|', 0, 0)
                        .toInt();
    const int now = file.rows(u"SELECT sum(StockAvailable) FROM StockList"_s).value(0).section(u'|', 0, 0).toInt();
    QCOMPARE(now, itemsInTheStore * stockOfEach + set - unitsSold(store));
}

void OfficesAtOnceTest::checkOneDay(quint32 seed)
{
    const QTemporaryDir folder(quickFolder() + u"/offices-XXXXXX"_s);
    const QString store = folder.filePath(u"shop.sqlite"_s);
    const QString end = folder.filePath(u"end"_s);
    makeSellingStore(store, itemsInTheStore);
    ForkedProcess till([&] { return sellUntil(store, end); });
    QVERIFY(till.read().startsWith("SOLD"));
    QByteArray said;
    {
        ForkedProcess one([&] { return work(store, folder.path(), u"ANNA"_s, seed); });
        ForkedProcess other([&] { return work(store, folder.path(), u"BEN"_s, seed + 1'000'000); });
        for (ForkedProcess *office : {&one, &other}) {
            said += allSaid(*office);
            office->kill();
            QVERIFY(office->hasEnded());
        }
    }
    QVERIFY(QFile(end).open(QIODevice::WriteOnly));
    (void)allSaid(till);
    till.kill();
    QVERIFY(till.hasEnded());
    const Database file(store);
    QCOMPARE(file.integrity(), u"ok"_s);
    QCOMPARE(said.count("IMPORTED"), 2 * importsOfEach);
    QCOMPARE(file.rows(u"SELECT 1 FROM HarrowbyCode"_s).size(), 2 * importsOfEach);
    const QStringList deeds = file.rows(
        u"SELECT 1 FROM HarrowbyActivity WHERE Kind IN ('%1', '%2')"_s.arg(deed::imported, deed::importTakenBack));
    QCOMPARE(deeds.size(), said.count("IMPORTED") + said.count("TAKEN BACK"));
    checkPrices(store);
    checkStock(store);
}

void OfficesAtOnceTest::nothingIsLost()
{
    const auto seed = static_cast<quint32>(wanted("HARROWBY_SEED", 1));
    {
        // What is copied has opened a window once.
        const QTemporaryDir folder;
        makeSellingStore(folder.filePath(u"shop.sqlite"_s), 1);
        const harrowby::test::Till till(folder.filePath(u"shop.sqlite"_s), harrowby::test::Till::Pace::Hurried);
    }
    const int rounds = wanted("HARROWBY_ROUNDS", 3);
    for (int round = 0; round < rounds && !QTest::currentTestFailed(); ++round) {
        checkOneDay(seed + static_cast<quint32>(round));
        if (QTest::currentTestFailed())
            qInfo() << "HARROWBY_SEED" << seed + static_cast<quint32>(round) << "replays it";
    }
    qInfo() << m_leftOut << "rows were left out, as the store had changed since the preview";
}

HARROWBY_TEST(app_offices_at_once_test, OfficesAtOnceTest)
#include "offices_at_once_test.moc"
