// SPDX-License-Identifier: MIT
#include "tests/app/screen.h"
#include "tests/app/store_files.h"
#include "tests/program/test_program.h"

#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using namespace harrowby::app::test;

/// The real program operated by keyboard, with a window manager and without one, as many tills are. The mouse is used
/// only where a comment says so.
class KeysRunTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cashierTypes_data();
    void cashierTypes();
    void anotherProgramKeepsTheKeys();

private:
    void logInAtTheSecondTry(RunningProgram &program);
    void sellByKeys(RunningProgram &program);
    void enterAQuantity(RunningProgram &program);
    void turnTheWheelOverTheTabs(RunningProgram &program);
    void closeByKeys(RunningProgram &program);
    void press(RunningProgram &program, const QString &name, int times, const QString &focus);
    void leanOn(RunningProgram &program, const QString &key);

    QTemporaryDir m_home;
    std::unique_ptr<Screen> m_screen;
};

void KeysRunTest::initTestCase()
{
    for (const QString &tool : {u"Xvfb"_s, u"openbox"_s, u"xdotool"_s})
        QVERIFY2(!QStandardPaths::findExecutable(tool).isEmpty(), qPrintable(tool + u" is needed"_s));
}

void KeysRunTest::cashierTypes_data()
{
    QTest::addColumn<bool>("managed");
    QTest::newRow("window manager") << true;
    QTest::newRow("bare screen") << false;
}

void KeysRunTest::cashierTypes()
{
    QFETCH(const bool, managed);
    m_screen = std::make_unique<Screen>();
    QVERIFY(m_screen->start(u"1366x768"_s, managed ? Screen::Manager::Openbox : Screen::Manager::None));
    const QString store = m_home.filePath(managed ? u"managed.sqlite"_s : u"bare.sqlite"_s);
    makeStore(store);
    runAll(store, {u"INSERT INTO StockList (StockID, StockName, StockCategory, StockCost, StockReorderLevel, "
                   "StockAvailable, StockUse) SELECT 'TEA-0002', 'MILK', StockCategory, '1.00', 5, 20, StockUse "
                   "FROM StockList"_s});
    RunningProgram program(*m_screen, m_home.path());
    QVERIFY(program.start({u"--database"_s, store}));
    logInAtTheSecondTry(program);
    if (QTest::currentTestFailed())
        return;
    QVERIFY(program.place(u"Command10"_s).x() > 1240); // the till fills a screen that is wider than its usual size
    sellByKeys(program);
    if (QTest::currentTestFailed())
        return;
    QCOMPARE(column(store, u"SELECT StockAvailable FROM StockList ORDER BY StockID"_s),
             (QStringList{u"19"_s, u"20"_s}));
    enterAQuantity(program);
    if (QTest::currentTestFailed())
        return;
    turnTheWheelOverTheTabs(program);
    closeByKeys(program);
}

void KeysRunTest::logInAtTheSecondTry(RunningProgram &program)
{
    QFETCH(const bool, managed);
    QTRY_COMPARE_WITH_TIMEOUT(program.focus(), u"Text3"_s, 60000);
    m_screen->type(u"administrator"_s);
    m_screen->key(u"Return"_s);
    m_screen->type(u"milk"_s);
    m_screen->key(u"Return"_s);
    QTRY_COMPARE_WITH_TIMEOUT(program.box(), u"Username or Password Incorrect!"_s, 30000);
    QTRY_VERIFY_WITH_TIMEOUT(program.place(u"OK"_s).x() > 0, 30000); // the keys go to the box
    QCOMPARE(program.has(u"windowEdge"_s), !managed);
    m_screen->key(u"Return"_s);
    QTRY_COMPARE_WITH_TIMEOUT(program.focus(), u"Text4"_s, 30000);
    m_screen->type(u"shake"_s);
    QTRY_COMPARE_WITH_TIMEOUT(program.text(u"Text4"_s), u"milkshake"_s, 30000);
    m_screen->key(u"shift+Home"_s);
    m_screen->type(u"secret"_s);
    QTRY_COMPARE_WITH_TIMEOUT(program.text(u"Text4"_s), u"secret"_s, 30000);
    m_screen->key(u"Return"_s);
    QTRY_COMPARE_WITH_TIMEOUT(program.focus(), u"Command1_0"_s, 30000);
    m_screen->key(u"Return"_s); // one too many
    QTRY_COMPARE_WITH_TIMEOUT(program.text(u"StatusBar1_1"_s), u"User: ADMINISTRATOR"_s, 30000);
}

/// Presses a key so many times, after which the focus must be at `focus`.
void KeysRunTest::press(RunningProgram &program, const QString &name, int times, const QString &focus)
{
    for (int time = 0; time < times; ++time)
        m_screen->key(name);
    QTRY_COMPARE_WITH_TIMEOUT(program.focus(), focus, 30000);
}

/// Presses a key that opens a question, and holds it until it has repeated over the box.
void KeysRunTest::leanOn(RunningProgram &program, const QString &key)
{
    m_screen->keyDown(key);
    QTRY_VERIFY_WITH_TIMEOUT(program.place(u"No"_s).x() > 0, 30000);
    const int before = program.keyPresses();
    QTRY_VERIFY_WITH_TIMEOUT(program.keyPresses() >= before + 5, 30000);
    m_screen->keyUp(key);
}

void KeysRunTest::sellByKeys(RunningProgram &program)
{
    press(program, u"Right"_s, 1, u"Command1_1"_s);
    press(program, u"Down"_s, 1, u"Command1_4"_s);
    press(program, u"Up"_s, 1, u"Command1_1"_s);
    QCOMPARE(program.text(u"Label5"_s), u"Total: 0.00"_s);
    m_screen->key(u"space"_s);
    QTRY_COMPARE_WITH_TIMEOUT(program.text(u"Label5"_s), u"Total: 2.50"_s, 30000);
    m_screen->key(u"alt+h"_s); // put aside, and brought back
    QTRY_COMPARE_WITH_TIMEOUT(program.focus(), u"heldWord"_s, 30000);
    m_screen->key(u"Return"_s);
    QTRY_COMPARE_WITH_TIMEOUT(program.text(u"Label5"_s), u"Total: 0.00"_s, 30000);
    QTRY_VERIFY_WITH_TIMEOUT(program.place(u"recallCart"_s).x() > 0, 30000); // the window has the keys again
    m_screen->key(u"alt+e"_s);
    QTRY_COMPARE_WITH_TIMEOUT(program.focus(), u"list"_s, 30000);
    m_screen->key(u"Return"_s);
    QTRY_COMPARE_WITH_TIMEOUT(program.text(u"Label5"_s), u"Total: 2.50"_s, 30000);

    // Holding the key that opened the box does not answer it.
    QVERIFY(program.press(u"Command14"_s)); // by the mouse, so that the button has the focus
    QTRY_VERIFY_WITH_TIMEOUT(program.box().startsWith(u"Item List:"_s), 30000);
    QTRY_VERIFY_WITH_TIMEOUT(program.place(u"No"_s).x() > 0, 30000);
    m_screen->key(u"Escape"_s);
    QTRY_COMPARE_WITH_TIMEOUT(program.focus(), u"Command14"_s, 30000);
    for (const QString &key : {u"Return"_s, u"F12"_s}) {
        leanOn(program, key);
        QVERIFY(program.box().startsWith(u"Item List:"_s));
        m_screen->key(u"Escape"_s);
        QTRY_COMPARE_WITH_TIMEOUT(program.focus(), u"Command14"_s, 30000);
    }
    m_screen->key(u"F12"_s);
    QTRY_VERIFY_WITH_TIMEOUT(program.place(u"Yes"_s).x() > 0, 30000);
    m_screen->key(u"Return"_s);
    QTRY_VERIFY_WITH_TIMEOUT(program.box().startsWith(u"Items have been purchased!"_s), 30000);
    QTRY_VERIFY_WITH_TIMEOUT(program.place(u"OK"_s).x() > 0, 30000);
    m_screen->key(u"Return"_s);
    QTRY_COMPARE_WITH_TIMEOUT(program.focus(), u"Command1_0"_s, 30000);
}

void KeysRunTest::enterAQuantity(RunningProgram &program)
{
    press(program, u"shift+Tab"_s, 6, u"TabStrip1"_s); // past "Next" and "Prev", which are disabled
    m_screen->key(u"2"_s);
    press(program, u"Tab"_s, 3, u"recallCart"_s); // the program's own buttons come behind the tabs
    press(program, u"Tab"_s, 3, u"Combo3"_s);
    m_screen->type(u"TEA-0001  |  TEA"_s);
    press(program, u"Tab"_s, 3, u"Command15"_s);
    m_screen->key(u"Return"_s);
    QTRY_VERIFY_WITH_TIMEOUT(program.box().contains(u"invalid quantity"_s), 30000);
    QTRY_VERIFY_WITH_TIMEOUT(program.place(u"OK"_s).x() > 0, 30000);
    m_screen->key(u"Return"_s);
    QTRY_COMPARE_WITH_TIMEOUT(program.focus(), u"Combo4"_s, 30000);
    m_screen->type(u"5"_s);
    QTRY_COMPARE_WITH_TIMEOUT(program.text(u"Combo4"_s), u"5"_s, 30000);

    // A context menu and a popup list keep the selection and the caret.
    m_screen->key(u"ctrl+a"_s);
    m_screen->key(u"Menu"_s);
    QTRY_COMPARE_WITH_TIMEOUT(program.popup(), u"open"_s, 30000);
    m_screen->key(u"Escape"_s);
    QTRY_COMPARE_WITH_TIMEOUT(program.popup(), u"-"_s, 30000);
    m_screen->type(u"12"_s);
    QTRY_COMPARE_WITH_TIMEOUT(program.text(u"Combo4"_s), u"12"_s, 30000);
    m_screen->key(u"Left"_s);
    m_screen->key(u"F4"_s);
    QTRY_COMPARE_WITH_TIMEOUT(program.popup(), u"open"_s, 30000);
    m_screen->key(u"Escape"_s);
    QTRY_COMPARE_WITH_TIMEOUT(program.popup(), u"-"_s, 30000);
    QTRY_COMPARE_WITH_TIMEOUT(program.focus(), u"Combo4"_s, 30000);
    m_screen->type(u"0"_s);
    QTRY_COMPARE_WITH_TIMEOUT(program.text(u"Combo4"_s), u"102"_s, 30000);
}

void KeysRunTest::turnTheWheelOverTheTabs(RunningProgram &program)
{
    m_screen->moveTo(program.awaitPlace(u"TabStrip1"_s));
    m_screen->turnWheel(true);
    m_screen->turnWheel(false);
    m_screen->turnWheel(false);
    m_screen->type(u"3"_s); // when this has arrived, the wheel has too
    QTRY_COMPARE_WITH_TIMEOUT(program.text(u"Combo4"_s), u"1032"_s, 30000);
}

void KeysRunTest::closeByKeys(RunningProgram &program)
{
    m_screen->key(u"alt+s"_s);
    QTRY_COMPARE_WITH_TIMEOUT(program.box(), u"Close Inventory?"_s, 30000);
    QTRY_VERIFY_WITH_TIMEOUT(program.place(u"Yes"_s).x() > 0, 30000);
    m_screen->key(u"Return"_s);
    const int code = program.waitForEnd();
    QVERIFY2(code == 0, qPrintable(u"%1\n%2"_s.arg(code).arg(program.errors())));
}

/// Two programs without a window manager: each takes the input focus only when it is pressed, or when the other ends.
void KeysRunTest::anotherProgramKeepsTheKeys()
{
    const QString store = m_home.filePath(u"bare.sqlite"_s);
    RunningProgram till(*m_screen, m_home.path());
    QVERIFY(till.start({u"--database"_s, store}));
    QTRY_COMPARE_WITH_TIMEOUT(till.focus(), u"Text3"_s, 60000);
    {
        RunningProgram office(*m_screen, m_home.path());
        QVERIFY(office.start({u"--office"_s, u"--database"_s, store}));
        QTRY_COMPARE_WITH_TIMEOUT(office.focus(), u"officePassword"_s, 60000);
        QTRY_COMPARE_WITH_TIMEOUT(till.focus(), u"-"_s, 30000);
        m_screen->moveWindow(u"Store"_s, {0, 0}); // the till is repainted, and must not take the focus
        QTRY_VERIFY_WITH_TIMEOUT(office.place(u"windowEdge"_s).x() < 300, 30000);
        m_screen->type(u"x"_s);
        QTRY_COMPARE_WITH_TIMEOUT(office.text(u"officePassword"_s), u"x"_s, 30000);
        const QPoint password = office.place(u"officePassword"_s);
        QVERIFY(till.press(QPoint(40, 740))); // an empty place
        QTRY_COMPARE_WITH_TIMEOUT(till.focus(), u"Text3"_s, 30000);
        QTRY_COMPARE_WITH_TIMEOUT(office.focus(), u"-"_s, 30000);
        QVERIFY(office.press(password));
        QTRY_COMPARE_WITH_TIMEOUT(office.focus(), u"officePassword"_s, 30000);
        m_screen->key(u"Escape"_s);
        QCOMPARE(office.waitForEnd(), 0);
    }
    QTRY_COMPARE_WITH_TIMEOUT(till.focus(), u"Text3"_s, 30000);
    m_screen->type(u"ann"_s);
    QTRY_COMPARE_WITH_TIMEOUT(till.text(u"Text3"_s), u"ANN"_s, 30000);
}

HARROWBY_CORE_TEST(app_keys_run_test, KeysRunTest)
#include "keys_run_test.moc"
