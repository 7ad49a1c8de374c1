// SPDX-License-Identifier: MIT
#include "app/keyboard/touch_keyboard.h"
#include "tests/app/screen.h"
#include "tests/app/store_files.h"
#include "tests/program/test_program.h"

#include <QCoreApplication>
#include <QHash>
#include <QLibraryInfo>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace harrowby::app;
using namespace harrowby::app::test;

namespace {

constexpr int width = 1024;
constexpr int height = 768;
constexpr int keyboardTop = height - 323; // 42 percent of the screen are the keyboard's

/// Middles of the keys, as the pages of the keyboard lay them out.
QPoint key(const QString &name)
{
    static const QHash<QString, QPoint> wide = {{u"Enter"_s, {932, 606}}, {u"Hide"_s, {932, 732}}};
    if (wide.contains(name))
        return wide.value(name);
    const QStringList rows = {u"1234567890"_s, u"QWERTYUIOP"_s, u"ASDFGHJKL"_s, u"ZXCVBNM"_s};
    const QList<QPoint> starts = {{47, 479}, {47, 543}, {92, 606}, {180, 669}};
    for (int row = 0; row < rows.size(); ++row) {
        if (const auto column = rows.at(row).indexOf(name); column >= 0)
            return starts.at(row) + QPoint(static_cast<int>(column) * 886 / 10, 0);
    }
    return {};
}

} // namespace

/// A till without a keyboard: the real program on a small screen, operated by presses alone.
class KeyboardRunTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void firstStartAndLogin();
    void keyboardGivesTheScreenBack();
    void keyboardComesBackAfterALogout();
    void withoutTheOptionThereIsNone();

private:
    void tap(const QString &text);
    [[nodiscard]] bool keyboardIsDrawn() const;
    [[nodiscard]] static bool isAbove(RunningProgram &program, const QString &name);

    QTemporaryDir m_home;
    Screen m_screen;
};

void KeyboardRunTest::initTestCase()
{
    const QStringList missing =
        missingKeyboardParts(QCoreApplication::libraryPaths(), {QLibraryInfo::path(QLibraryInfo::QmlImportsPath)});
    QVERIFY2(missing.isEmpty(), qPrintable(missing.join(u", "_s) + u" is needed"_s));
    for (const QString &tool : {u"Xvfb"_s, u"openbox"_s, u"xdotool"_s})
        QVERIFY2(!QStandardPaths::findExecutable(tool).isEmpty(), qPrintable(tool + u" is needed"_s));
    QVERIFY(m_screen.start(u"%1x%2"_s.arg(width).arg(height)));
}

void KeyboardRunTest::tap(const QString &text)
{
    for (const QChar c : text)
        m_screen.press(key(c));
}

/// Before that, what is pressed there is lost or comes late.
bool KeyboardRunTest::keyboardIsDrawn() const
{
    constexpr QRgb plate = 0x3b494b; // of a key that can be pressed, in app/keyboard/style/TillKey.qml
    constexpr QSize part(60, 40);
    QRect middle({}, part);
    middle.moveCenter(key(u"A"_s));
    return m_screen.count(plate, middle) > part.width() * part.height() / 2;
}

bool KeyboardRunTest::isAbove(RunningProgram &program, const QString &name)
{
    const int y = program.place(name).y();
    return y > 0 && y < keyboardTop;
}

void KeyboardRunTest::firstStartAndLogin()
{
    RunningProgram program(m_screen, m_home.path());
    QVERIFY(program.start({u"--touch-keyboard"_s}));
    // The keyboard is shown without a press, and the whole box is above it.
    QTRY_VERIFY2_WITH_TIMEOUT(isAbove(program, u"Create Store"_s), qPrintable(program.errors()), 60000);
    QTRY_VERIFY_WITH_TIMEOUT(keyboardIsDrawn(), 60000);
    tap(u"TILL"_s);
    QTRY_COMPARE_WITH_TIMEOUT(program.text(u"password"_s).toUpper(), u"TILL"_s, 30000);
    QVERIFY(program.press(u"passwordAgain"_s));
    QTRY_COMPARE_WITH_TIMEOUT(program.focus(), u"passwordAgain"_s, 30000);
    QTRY_VERIFY_WITH_TIMEOUT(isAbove(program, u"Create Store"_s) && keyboardIsDrawn(), 30000);
    tap(u"TILL"_s);
    QTRY_COMPARE_WITH_TIMEOUT(program.text(u"passwordAgain"_s).toUpper(), u"TILL"_s, 30000);
    m_screen.press(key(u"Enter"_s));

    QTRY_COMPARE_WITH_TIMEOUT(program.focus(), u"Text3"_s, 60000);
    QTRY_VERIFY_WITH_TIMEOUT(isAbove(program, u"Command28"_s) && keyboardIsDrawn(), 30000);
    tap(u"ADMINISTRATOR"_s);
    QTRY_COMPARE_WITH_TIMEOUT(program.text(u"Text3"_s), u"ADMINISTRATOR"_s, 30000);
    m_screen.press(key(u"Enter"_s));
    QTRY_COMPARE_WITH_TIMEOUT(program.focus(), u"Text4"_s, 30000);
    QTRY_VERIFY_WITH_TIMEOUT(isAbove(program, u"Text4"_s) && keyboardIsDrawn(), 30000);
    tap(u"TILL"_s);
    QTRY_COMPARE_WITH_TIMEOUT(program.text(u"Text4"_s).toUpper(), u"TILL"_s, 30000);
    QVERIFY(program.press(u"Command28"_s)); // the button stays in place until it is released
    QTRY_COMPARE_WITH_TIMEOUT(program.text(u"StatusBar1_1"_s), u"User: ADMINISTRATOR"_s, 30000);
}

void KeyboardRunTest::keyboardGivesTheScreenBack()
{
    RunningProgram program(m_screen, m_home.path());
    QVERIFY(program.start({u"--touch-keyboard"_s}));
    QTRY_VERIFY_WITH_TIMEOUT(isAbove(program, u"Command28"_s), 60000);
    QTRY_VERIFY_WITH_TIMEOUT(keyboardIsDrawn(), 60000);
    const int lifted = program.place(u"Command28"_s).y();
    m_screen.press(key(u"Hide"_s));
    QTRY_VERIFY_WITH_TIMEOUT(program.place(u"Command28"_s).y() > lifted, 30000);
    QVERIFY(program.press(u"Text3"_s));
    QTRY_COMPARE_WITH_TIMEOUT(program.place(u"Command28"_s).y(), lifted, 30000);
}

/// Without a window manager only the program itself can focus its window after the box has closed.
void KeyboardRunTest::keyboardComesBackAfterALogout()
{
    Screen bare;
    QVERIFY(bare.start(u"%1x%2"_s.arg(width).arg(height), Screen::Manager::None));
    const QString store = m_home.filePath(u"shop.sqlite"_s);
    makeStore(store);
    RunningProgram program(bare, m_home.path());
    QVERIFY(program.start({u"--touch-keyboard"_s, u"--database"_s, store}));
    QTRY_VERIFY_WITH_TIMEOUT(isAbove(program, u"Command28"_s), 60000);
    QTRY_COMPARE_WITH_TIMEOUT(program.focus(), u"Text3"_s, 30000);
    bare.type(u"administrator"_s);
    bare.key(u"Return"_s);
    bare.type(u"secret"_s);
    bare.key(u"Return"_s);
    QTRY_COMPARE_WITH_TIMEOUT(program.text(u"StatusBar1_1"_s), u"User: ADMINISTRATOR"_s, 30000);
    QVERIFY(program.press(u"Command27"_s));
    QVERIFY(program.press(u"Yes"_s));
    QTRY_COMPARE_WITH_TIMEOUT(program.focus(), u"Text3"_s, 30000);
    QTRY_VERIFY_WITH_TIMEOUT(isAbove(program, u"Command28"_s), 30000);
}

void KeyboardRunTest::withoutTheOptionThereIsNone()
{
    RunningProgram program(m_screen, m_home.path());
    QVERIFY(program.start({}));
    QVERIFY(program.press(u"Text3"_s));
    m_screen.type(u"anna"_s);
    QTRY_COMPARE_WITH_TIMEOUT(program.text(u"Text3"_s), u"ANNA"_s, 30000);
    QVERIFY(!isAbove(program, u"Command28"_s));
}

HARROWBY_CORE_TEST(app_keyboard_run_test, KeyboardRunTest)
#include "keyboard_run_test.moc"
