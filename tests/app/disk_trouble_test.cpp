// SPDX-License-Identifier: MIT
#include "app/backup/backup.h"
#include "app/export/export.h"
#include "app/shop/receipt_head.h"
#include "app/shop/store_create.h"
#include "app/shop/store_open.h"
#include "tests/app/troubled_till.h"

#include "tests/support/failing_disk.h"
#include "ui/widgets/pick_list.h"

#include <harrowby/saved_settings.h>

#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QTest>

#include <cerrno>
#include <functional>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;
using namespace harrowby::app::test;
using harrowby::test::FailingDisk::Mode;
namespace FailingDisk = harrowby::test::FailingDisk;

Q_DECLARE_METATYPE(harrowby::test::FailingDisk::Mode)

namespace {

/// More operations than any action takes; reaching it means a hang.
constexpr int mostOperations = 2000;

/// The figures that an action changes as a whole.
struct Figures
{
    int purchases = 0;
    double units = 0.0; ///< in stock
    QString settings;   ///< of the shop
    int receipts = 0;
    QString savedEmail; ///< the user's own setting

    bool operator==(const Figures &) const = default;
};

Figures figuresOf(const TroubledTill &till)
{
    return {till.cell(u"SELECT count(*) FROM PurchaseCart"_s).toInt(),
            till.cell(u"SELECT total(StockAvailable) FROM StockList"_s).toDouble(),
            till.cell(u"SELECT Email || ' ' || EmailAddress FROM StoreSettings"_s), till.receipts(),
            till.iniValue(u"Option/EmailReport"_s)};
}

/// What is missing and was not reported; empty when every missing thing was reported.
QString lostInSilence(const TroubledTill &till, const Figures &found, const Figures &whole)
{
    using Kind = FileFailure::Kind;
    const auto &files = till.toldOfFiles;
    const bool hasStatements =
        found.purchases == whole.purchases && found.units == whole.units && found.settings == whole.settings;
    if (!hasStatements && till.toldOfStatements.isEmpty())
        return u"a statement"_s;
    // A till that could not read the settings, or the sale, has reported that, and prints what it has.
    if (found.receipts != whole.receipts && files.empty() && till.toldOfStatements.isEmpty())
        return u"a receipt"_s;
    if (found.receipts < whole.receipts && found.purchases == whole.purchases && !files.contains(Kind::Receipt) &&
        !files.contains(Kind::SettingsRead))
        return u"the receipt of a sale that was made"_s;
    if (found.savedEmail != whole.savedEmail && !files.contains(Kind::SettingsWrite))
        return u"a saved setting"_s;
    return {};
}

QByteArray bytesAt(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool writeAt(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

struct Action
{
    std::function<void(TroubledTill &, int round)> prepare;
    std::function<void(TroubledTill &, int round)> act;
    std::function<void(Figures &, int round)> change; ///< what the complete action changes
    int leastOperations = 1;
};

void saveItem(TroubledTill &till, const QString &id, int available)
{
    const Controls &controls = till.controls();
    controls.Combo6->setEntryText(id);
    controls.Combo5->setEntryText(u"TEA"_s);
    controls.Combo7->setEntryText(u"NAME OF "_s + id);
    controls.Combo8->setEntryText(u"2.50"_s);
    controls.Combo13->setEntryText(u"1"_s);
    controls.Combo14->setEntryText(QString::number(available));
    controls.Combo15->setEntryText(u"Enabled"_s);
    till.click("Command16");
}

void reorder(TroubledTill &till, int)
{
    till.controls().Combo11->setEntryText(u"A1  |  NAME OF A1"_s);
    till.controls().Combo10->setEntryText(u"5"_s);
    till.click("Command17");
}

void saveSettings(TroubledTill &till, int round)
{
    till.controls().Check4->setChecked(round % 2 == 1);
    till.controls().Text2->setText(u"shop%1@example.com"_s.arg(round));
    till.click("Command18");
}

void changeSettings(Figures &figures, int round)
{
    figures.settings = u"%1 shop%2@example.com"_s.arg(round % 2).arg(round);
    figures.savedEmail = QString::number(round % 2);
}

void nothing(TroubledTill &, int) {}
void sellOnce(TroubledTill &till, int)
{
    till.sell();
}

const QMap<QString, Action> &actions()
{
    static const QMap<QString, Action> all{
        {u"commit"_s,
         {[](TroubledTill &till, int) { till.fillCart(); }, [](TroubledTill &till, int) { till.click("Command14"); },
          [](Figures &figures, int) {
              ++figures.purchases;
              figures.units -= 2;
              ++figures.receipts;
          },
          20}},
        {u"undo"_s,
         {sellOnce, [](TroubledTill &till, int) { till.click("Command25"); },
          [](Figures &figures, int) {
              --figures.purchases;
              figures.units += 2;
          },
          10}},
        {u"deletion"_s,
         {[](TroubledTill &till, int) {
              till.sell();
              till.controls().Combo17->setEntryText(till.state().last.LastPurchaseID);
          },
          [](TroubledTill &till, int) { till.click("Command4"); },
          [](Figures &figures, int) {
              --figures.purchases;
              figures.units += 2;
          },
          10}},
        {u"save a new item"_s,
         {nothing, [](TroubledTill &till, int round) { saveItem(till, u"N%1"_s.arg(round), 7); },
          [](Figures &figures, int) { figures.units += 7; }, 4}},
        {u"save an edited item"_s,
         {[](TroubledTill &till, int) { saveItem(till, u"EDITED"_s, 50); },
          [](TroubledTill &till, int) { saveItem(till, u"EDITED"_s, 60); },
          [](Figures &figures, int) { figures.units += 10; }, 4}},
        {u"reorder"_s, {nothing, reorder, [](Figures &figures, int) { figures.units += 5; }, 4}},
        {u"undo of a reorder"_s,
         {reorder, [](TroubledTill &till, int) { till.click("Command23"); },
          [](Figures &figures, int) { figures.units -= 5; }, 4}},
        {u"settings"_s, {nothing, saveSettings, changeSettings, 15}},
    };
    return all;
}

QString faultText(int operation)
{
    return u"operation %1, %2: "_s.arg(operation).arg(FailingDisk::firstFailure());
}

} // namespace

/// The N-th operation of the disk fails, for N from 1 on until the action runs through: what was reported done is in
/// the file, what was not done was reported, and if nothing was reported, all of it is done.
class DiskTroubleTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyOperationOfAnAction_data();
    void everyOperationOfAnAction();
    void everyOperationOfABackup_data();
    void everyOperationOfABackup();
    void everyOperationOfAnExport_data();
    void everyOperationOfAnExport();
    void everyOperationOfAFirstStart_data();
    void everyOperationOfAFirstStart();

private:
    static void check(TroubledTill &till, qint64 logSize);
    static int tryOnce(TroubledTill &till, const Action &action, int operation, Mode mode, int error);
};

namespace {

void addModes()
{
    QTest::addColumn<Mode>("mode");
    QTest::addColumn<int>("error");
}

void addRows(const QString &name)
{
    QTest::addRow("%s, one input/output error", qPrintable(name)) << name << Mode::Once << EIO;
    QTest::addRow("%s, a disk that stays full", qPrintable(name)) << name << Mode::Forever << ENOSPC;
}

} // namespace

void DiskTroubleTest::everyOperationOfAnAction_data()
{
    QTest::addColumn<QString>("name");
    addModes();
    for (auto action = actions().cbegin(); action != actions().cend(); ++action)
        addRows(action.key());
}

/// After any failure the file holds what was reported done, and each failure was reported, and logged if the log can be
/// written.
void DiskTroubleTest::check(TroubledTill &till, qint64 logSize)
{
    QVERIFY(!till.isLost()); // a failing disk is not a lost file
    QCOMPARE(till.differsFromWhatWasDone(), QString());
    QCOMPARE(till.store().integrity(), u"ok"_s);
    QVERIFY2(till.told.size() >= till.failedStatements.size(), qPrintable(till.failedStatements.join(u'\n')));
    QVERIFY(till.told.isEmpty() || till.logSize() > logSize || till.hasLogTrouble);
    QCOMPARE(till.iniValue(u"Other/Kept"_s), u"kept"_s);
}

/// The number of operations that failed.
int DiskTroubleTest::tryOnce(TroubledTill &till, const Action &action, int operation, Mode mode, int error)
{
    action.prepare(till, operation);
    Figures expected = figuresOf(till);
    action.change(expected, operation);
    till.forget();
    const qint64 logSize = till.logSize();
    FailingDisk::failAt(operation, mode, error);
    action.act(till, operation);
    QCoreApplication::processEvents();
    till.tick();
    const int failures = FailingDisk::failures();
    const QString fault = faultText(operation);
    FailingDisk::failAt(0, mode, error);
    check(till, logSize);
    const Figures found = figuresOf(till);
    if (const QString lost = lostInSilence(till, found, expected); !lost.isEmpty())
        QTest::qFail(qPrintable(fault + u"lost in silence: "_s + lost), __FILE__, __LINE__);
    if (failures == 0 && !(found == expected && till.told.isEmpty()))
        QTest::qFail(qPrintable(u"without a fault: "_s + till.told.join(u'\n')), __FILE__, __LINE__);
    if (QTest::currentTestFailed())
        qWarning().noquote() << fault << till.told;
    return failures;
}

void DiskTroubleTest::everyOperationOfAnAction()
{
    QFETCH(const QString, name);
    QFETCH(const Mode, mode);
    QFETCH(const int, error);
    const Action &action = actions()[name];
    TroubledTill till;
    QVERIFY(till.state().login.IsLoggedIn);
    FailingDisk::mount(till.home());
    int operation = 1;
    while (operation < mostOperations && tryOnce(till, action, operation, mode, error) > 0 &&
           !QTest::currentTestFailed())
        ++operation;
    QVERIFY(operation < mostOperations);
    QVERIFY2(operation > action.leastOperations || QTest::currentTestFailed(), qPrintable(QString::number(operation)));
}

void DiskTroubleTest::everyOperationOfABackup_data()
{
    QTest::addColumn<QString>("name");
    addModes();
    addRows(u"in a new place"_s);
    addRows(u"over an older one"_s);
}

void DiskTroubleTest::everyOperationOfABackup()
{
    QFETCH(const QString, name);
    QFETCH(const Mode, mode);
    QFETCH(const int, error);
    TroubledTill till;
    till.sell();
    const QStringList whole = till.store().everything();
    const QString target = till.home() + u"/backup.db"_s;
    const bool replaces = name.startsWith(u"over"_s);
    FailingDisk::mount(till.home());
    int failures = 1;
    int operation = 1;
    for (; operation < mostOperations && failures > 0; ++operation) {
        QFile::remove(target);
        if (replaces)
            QVERIFY(QFile(target).open(QIODevice::WriteOnly | QIODevice::NewOnly));
        till.forget();
        FailingDisk::failAt(operation, mode, error);
        const BackupResult result =
            backUpStore(till.storePath(), target, replaces, [](const BackupProgress &) { return true; });
        failures = FailingDisk::failures();
        const QString fault = faultText(operation);
        FailingDisk::failAt(0, mode, error);
        if (result.outcome == BackupResult::Outcome::Done) {
            QCOMPARE(harrowby::test::Database(target, true).everything(), whole);
        } else {
            QVERIFY2(failures > 0 && !result.problem.isEmpty(), qPrintable(fault));
            QCOMPARE(QFile::exists(target), replaces);
            QCOMPARE(QFile(target).size(), 0);
        }
        QVERIFY2(till.differsFromWhatWasDone().isEmpty(), qPrintable(fault));
    }
    QVERIFY(operation > 10 && operation < mostOperations);
}

void DiskTroubleTest::everyOperationOfAnExport_data()
{
    QTest::addColumn<QString>("name");
    addModes();
    addRows(u"over an older one"_s);
}

/// The list is whole, or the older one stays and the reason is told; nothing else is left there.
void DiskTroubleTest::everyOperationOfAnExport()
{
    QFETCH(const Mode, mode);
    QFETCH(const int, error);
    TroubledTill till;
    till.sell();
    const QString target = till.home() + u"/list.csv"_s;
    const auto list = [&] { return exportList(till.storePath(), target, {}, [](const WorkStep &) { return true; }); };
    QVERIFY(list().outcome == ExportEnd::Outcome::Done);
    const QByteArray whole = bytesAt(target);
    FailingDisk::mount(till.home());
    int failures = 1;
    int operation = 1;
    for (; operation < mostOperations && failures > 0; ++operation) {
        QVERIFY(writeAt(target, "an older one"));
        till.forget();
        FailingDisk::failAt(operation, mode, error);
        const ExportEnd end = list();
        failures = FailingDisk::failures();
        const QString fault = faultText(operation);
        const bool isAtThePlace = FailingDisk::firstFailure().startsWith(u"write "_s + target);
        FailingDisk::failAt(0, mode, error);
        if (end.outcome == ExportEnd::Outcome::Done) {
            QCOMPARE(bytesAt(target), whole);
        } else {
            QVERIFY2(failures > 0 && !end.problem.isEmpty(), qPrintable(fault));
            QCOMPARE(bytesAt(target), QByteArray("an older one"));
            if (isAtThePlace && error == ENOSPC)
                QVERIFY2(end.problem.contains(u"no space left"_s), qPrintable(end.problem));
        }
        QCOMPARE(QDir(till.home()).entryList({u"list*"_s}, QDir::AllEntries | QDir::Hidden).size(), 1);
        QVERIFY2(till.differsFromWhatWasDone().isEmpty(), qPrintable(fault));
    }
    QVERIFY(operation > 5 && operation < mostOperations);
}

void DiskTroubleTest::everyOperationOfAFirstStart_data()
{
    QTest::addColumn<QString>("name");
    addModes();
    addRows(u"a new store"_s);
}

namespace {

/// The outcome of a start.
struct Start
{
    bool isMade = false;     ///< the store
    bool isAccepted = false; ///< the store, when it is opened again
    bool isKept = false;     ///< the choice of title and currency
    QStringList told;        ///< all reported failures
};

Start startFirst(const QString &path)
{
    const auto fill = [](sqlite3 *database) { return addAdministrator(database, u"PASS"_s); };
    Start start;
    if (const auto problem = createStore(path, true, fill)) {
        start.told << problem->text;
        return start;
    }
    start.isMade = true;
    start.isKept = saveNewShop({savedSetting, saveSetting}, {u"SHOP"_s, u"N"_s});
    BusyWait wait;
    const auto database = openStore(path, wait);
    start.isAccepted = database.has_value();
    start.told << (database ? openAndClose(database->get()) : QStringList{database.error().text});
    return start;
}

/// Each part is there as a whole, or absent and reported.
void checkStart(const QString &path, const Start &start)
{
    QCOMPARE(QFile::exists(path), start.isMade);
    QVERIFY(start.isAccepted || !start.told.join(QString()).isEmpty());
    if (!start.isMade)
        return;
    const harrowby::test::Database store(path);
    QCOMPARE(store.integrity(), u"ok"_s);
    QCOMPARE(store.rows(u"SELECT Username FROM Users"_s), QStringList{u"ADMINISTRATOR"_s});
    if (start.told.isEmpty())
        QCOMPARE(store.rows(u"SELECT count(*) FROM StoreSettings"_s), QStringList{u"1"_s});
    if (start.isKept)
        QCOMPARE(savedSetting(u"option"_s, u"Title"_s, {}) + savedSetting(u"Option"_s, u"EmailReport"_s, {}),
                 u"SHOP0"_s);
}

} // namespace

void DiskTroubleTest::everyOperationOfAFirstStart()
{
    QFETCH(const Mode, mode);
    QFETCH(const int, error);
    int failures = 1;
    int operation = 1;
    for (; operation < mostOperations && failures > 0; ++operation) {
        const harrowby::testing::IsolatedHome home;
        const QString path = home.path(u".local/share/Harrowby/store.sqlite"_s);
        FailingDisk::mount(home.path());
        FailingDisk::failAt(operation, mode, error);
        const Start start = startFirst(path);
        failures = FailingDisk::failures();
        const QString fault = faultText(operation);
        FailingDisk::failAt(0, mode, error);
        checkStart(path, start);
        QVERIFY2(failures > 0 || (start.isKept && start.told.isEmpty()), qPrintable(start.told.join(u'\n')));
        QVERIFY2(!QTest::currentTestFailed(), qPrintable(fault));
    }
    QVERIFY(operation > 20 && operation < mostOperations);
}

QTEST_MAIN(DiskTroubleTest)
#include "disk_trouble_test.moc"
