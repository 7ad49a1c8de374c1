// SPDX-License-Identifier: MIT
#include "tests/app/screen.h"
#include "tests/app/store_files.h"
#include "tests/app/wedge.h"
#include "tests/program/test_program.h"

#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using namespace harrowby::app::test;

/// The first hour of a shop, with real keys and fingers: a new store, 500 items out of a spreadsheet with codes and
/// some faulty rows, labels for them, and the first sale.
class ManagerTrialTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void listBecomesAShop();
    void firstSale();

private:
    void writeList() const;
    void makeStoreAndLogIn(RunningProgram &office);
    void importList(RunningProgram &office);
    void saveLabels(RunningProgram &office);
    void answer(RunningProgram &program, const QString &entry, const QString &text);
    [[nodiscard]] QString list() const { return m_home.filePath(u"articles.csv"_s); }
    [[nodiscard]] QString labels() const { return m_home.filePath(u"labels.pdf"_s); }
    [[nodiscard]] QString read(const QString &select) const { return column(m_store, select).value(0); }

    QTemporaryDir m_home;
    QString m_store;
    std::unique_ptr<Screen> m_screen;
    std::unique_ptr<Wedge> m_reader;
};

namespace {

constexpr int itemsOfTheList = 500;

QString codeOf(int item)
{
    const QString digits = u"400638%1"_s.arg(item, 6, 10, QChar(u'0'));
    int sum = 0;
    for (qsizetype i = 0; i < digits.size(); ++i)
        sum += digits.at(i).digitValue() * (i % 2 == 0 ? 1 : 3);
    return digits + QString::number((10 - sum % 10) % 10);
}

} // namespace

/// As a spreadsheet saves it where a price is written 1,50; three of its rows cannot be sold so.
void ManagerTrialTest::writeList() const
{
    QStringList lines = {u"Artikelnummer;Bezeichnung;Warengruppe;Preis;Mindestbestand;Bestand;EAN"_s};
    for (int item = 1; item <= itemsOfTheList; ++item) {
        const QString name = item == 17 ? u"Ben's Biscuits"_s : item == 18 ? QString() : u"M\u00fcsli %1"_s.arg(item);
        const QString price = item == 19 ? u"abc"_s : item == 20 ? u"1.234,50"_s : u"%1,5"_s.arg(item % 40 + 1);
        lines << u"A%1;%2;%3;%4;2;%5;%6"_s.arg(item, 4, 10, QChar(u'0'))
                     .arg(name, item % 2 == 0 ? u"Breakfast"_s : u"Snacks"_s, price)
                     .arg(item % 30 + 1)
                     .arg(codeOf(item));
    }
    QFile file(list());
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(file.write((lines.join(u"\r\n"_s) + u"\r\n"_s).toLatin1()) > 0);
}

void ManagerTrialTest::initTestCase()
{
    for (const QString &tool : {u"Xvfb"_s, u"openbox"_s, u"xdotool"_s})
        QVERIFY2(!QStandardPaths::findExecutable(tool).isEmpty(), qPrintable(tool + u" is needed"_s));
    m_screen = std::make_unique<Screen>();
    QVERIFY(m_screen->start(u"1024x768"_s));
    m_reader = std::make_unique<Wedge>(m_screen->display());
    m_store = m_home.filePath(u"shop.sqlite"_s);
    writeList();
}

/// Types into the entry, once it is there, and Enter.
void ManagerTrialTest::answer(RunningProgram &program, const QString &entry, const QString &text)
{
    QVERIFY2(program.press(entry), qPrintable(entry + program.errors()));
    m_screen->key(u"ctrl+a"_s);
    m_screen->type(text);
    QTRY_COMPARE_WITH_TIMEOUT(program.text(entry), text, 30000);
    m_screen->key(u"Return"_s);
}

void ManagerTrialTest::makeStoreAndLogIn(RunningProgram &office)
{
    QVERIFY(office.start({u"--office"_s, u"--database"_s, m_store}));
    QVERIFY2(office.press(u"password"_s), qPrintable(office.errors()));
    m_screen->type(u"secret"_s);
    QVERIFY(office.press(u"passwordAgain"_s));
    m_screen->type(u"secret"_s);
    m_screen->key(u"Return"_s);
    answer(office, u"officePassword"_s, u"secret"_s);
}

/// By the keyboard but for the switch.
void ManagerTrialTest::importList(RunningProgram &office)
{
    QTRY_VERIFY_WITH_TIMEOUT(office.has(u"addUser"_s), 30000);
    m_screen->key(u"alt+g"_s);
    QVERIFY(office.press(u"beginImport"_s));
    answer(office, u"fileNameEdit"_s, list());
    const QStringList steps = {u"Step 1"_s, u"Step 2"_s, u"Step 3"_s, u"Step 4"_s};
    for (const QString &step : steps) {
        QTRY_VERIFY2_WITH_TIMEOUT(office.text(u"importHeading"_s).startsWith(step),
                                  qPrintable(office.text(u"importOutcome"_s)), 30000);
        QVERIFY(office.awaitKeysOf(u"importNext"_s));
        if (step != steps.constLast())
            m_screen->key(u"Return"_s);
    }
    QVERIFY(office.press(u"importValidRows"_s));
    QVERIFY(office.press(u"importNext"_s));
    QTRY_VERIFY2_WITH_TIMEOUT(office.has(u"importDone"_s), qPrintable(office.text(u"importOutcome"_s)), 60000);
    QVERIFY2(office.text(u"importDone"_s).contains(u"497 new"_s), qPrintable(office.text(u"importDone"_s)));
    QVERIFY(office.press(u"importNext"_s));
}

/// By finger but for the file's name.
void ManagerTrialTest::saveLabels(RunningProgram &office)
{
    m_screen->key(u"alt+l"_s);
    QVERIFY(office.press(u"addLabelItems"_s));
    QVERIFY(office.press(u"addAllLabels"_s));
    QTRY_VERIFY_WITH_TIMEOUT(office.text(u"labelPickerOutcome"_s).contains(u"497"_s), 30000);
    QVERIFY(office.press(u"closeLabelPicker"_s));
    QVERIFY(office.press(u"saveLabels"_s));
    answer(office, u"fileNameEdit"_s, labels());
    QTRY_VERIFY2_WITH_TIMEOUT(office.text(u"labelsOutcome"_s).contains(u"labels.pdf"_s),
                              qPrintable(office.text(u"labelsOutcome"_s)), 60000);
}

void ManagerTrialTest::listBecomesAShop()
{
    RunningProgram office(*m_screen, m_home.path());
    for (const auto part :
         {&ManagerTrialTest::makeStoreAndLogIn, &ManagerTrialTest::importList, &ManagerTrialTest::saveLabels}) {
        (this->*part)(office);
        if (QTest::currentTestFailed())
            return;
    }
    QVERIFY(office.press(u"closeOffice"_s));
    QCOMPARE(office.waitForEnd(), 0);
    QVERIFY(QFileInfo(labels()).size() > 10'000);
    QCOMPARE(read(u"SELECT count(*) FROM StockList"_s), u"497"_s);
    QCOMPARE(read(u"SELECT count(*) FROM HarrowbyCode"_s), u"497"_s);
    QCOMPARE(
        read(u"SELECT StockName || ' ' || StockCategory || ' ' || StockCost || ' ' || StockAvailable FROM StockList "
             "WHERE StockID = 'A0020'"_s),
        u"M\u00dcSLI 20 BREAKFAST 1234.5 21"_s);
}

void ManagerTrialTest::firstSale()
{
    RunningProgram till(*m_screen, m_home.path());
    QVERIFY(till.start({u"--database"_s, m_store}));
    QTRY_COMPARE_WITH_TIMEOUT(till.focus(), u"Text3"_s, 60000);
    QVERIFY(m_reader->type(u"administrator\r"_s, 120));
    QTRY_COMPARE_WITH_TIMEOUT(till.focus(), u"Text4"_s, 30000);
    QVERIFY(m_reader->type(u"secret\r"_s, 5));
    QTRY_COMPARE_WITH_TIMEOUT(till.text(u"StatusBar1_1"_s), u"User: ADMINISTRATOR"_s, 30000);
    QVERIFY(m_reader->type(codeOf(7) + u'\r', 5, 100));
    QTRY_COMPARE_WITH_TIMEOUT(till.text(u"Label5"_s), u"Total: 8.50"_s, 30000);
    QVERIFY(till.press(u"Purchase Cart"_s));
    QVERIFY(till.press(u"Yes"_s));
    QVERIFY(till.press(u"OK"_s));
    QTRY_COMPARE_WITH_TIMEOUT(read(u"SELECT PurchasedItems FROM PurchaseCart"_s),
                              u"1 x A0007  |  M\u00dcSLI 7 = 8.50"_s, 30000);
    QVERIFY(till.press(u"Close Inventory"_s));
    QVERIFY(till.press(u"Yes"_s));
    QCOMPARE(till.waitForEnd(), 0);
}

HARROWBY_CORE_TEST(app_manager_trial_test, ManagerTrialTest)
#include "manager_trial_test.moc"
