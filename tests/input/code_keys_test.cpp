// SPDX-License-Identifier: MIT
#include "input/code_keys.h"
#include "tests/input/keyboard.h"
#include "tests/program/test_program.h"

#include <QDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QShortcut>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <memory>

using namespace Qt::StringLiterals;
using harrowby::CodeKeys;
using harrowby::CodeReaderSettings;
using namespace harrowby::test;

class CodeKeysTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void places_data();
    void places();
    void personIsNotNoticed_data();
    void personIsNotNoticed();
    void replaysWhenNothingFollows();
    void arrivalDoesNotCount();
    void repeatsDoNotCount();
    void doubledCharacterIsNoRepeat();
    void noTimeNoCode();
    void modifiersPass();
    void commandsPass();
    void plainShortcuts();
    void prefixStaysOutOfEntries();
    void boxIsNotAnswered();
    void inputBoxGetsNothing();
    void boxOpenedByAReplayedKey();
    void focusThatMoves();
    void codeOverTheFocusOfABox();
    void tooLong();
    void twoReaders();
    void rulesComeAndGo();

private:
    [[nodiscard]] QStringList codes() const;
    [[nodiscard]] QList<CodeKeys::Refusal> refusals() const;

    std::unique_ptr<CodeKeys> m_keys;
    std::unique_ptr<QSignalSpy> m_read;
    std::unique_ptr<QSignalSpy> m_refused;
};

void CodeKeysTest::init()
{
    m_keys = std::make_unique<CodeKeys>();
    m_keys->setSettings(CodeReaderSettings());
    m_read = std::make_unique<QSignalSpy>(m_keys.get(), &CodeKeys::codeRead);
    m_refused = std::make_unique<QSignalSpy>(m_keys.get(), &CodeKeys::codeRefused);
}

void CodeKeysTest::cleanup()
{
    m_keys.reset();
}

QStringList CodeKeysTest::codes() const
{
    QStringList all;
    for (const auto &arguments : *m_read)
        all << (arguments.at(1).toBool() ? u"+"_s : QString()) + arguments.at(0).toString();
    return all;
}

QList<CodeKeys::Refusal> CodeKeysTest::refusals() const
{
    QList<CodeKeys::Refusal> all;
    for (const auto &arguments : *m_refused)
        all << arguments.at(0).value<CodeKeys::Refusal>();
    return all;
}

void CodeKeysTest::places_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("toHost");
    QTest::addColumn<QString>("stands"); ///< in the control
    for (const QString &name : {u"text"_s, u"longText"_s, u"editList"_s})
        QTest::newRow(qPrintable(name)) << name << false << u"4006aB-1"_s;
    QTest::newRow("password") << u"password"_s << false << u"4006aB-1"_s;
    for (const QString &name : {u"readOnly"_s, u"figure"_s, u"spin"_s, u"list"_s, u"tabs"_s, u"rows"_s, u"button"_s})
        QTest::newRow(qPrintable(name)) << name << true << QString();
}

void CodeKeysTest::places()
{
    QFETCH(const QString, name);
    QFETCH(const bool, toHost);
    for (const QChar end : {u'\r', u'\t'}) {
        m_keys->setSettings(CodeReaderSettings()); // forgets the last one
        Window window;
        window.focus(name);
        auto *control = window.findChild<QWidget *>(name);
        const auto stands = [control] {
            const QByteArray property = control->property("plainText").isValid() ? "plainText"
                                        : control->property("text").isValid()    ? "text"
                                                                                 : "currentText";
            return control->property(property).toString();
        };
        const QString before = stands();
        QSignalSpy pressed(window.button, &QPushButton::clicked);
        QSignalSpy entered(window.text, &QLineEdit::returnPressed);
        QSignalSpy passwordEntered(window.password, &QLineEdit::returnPressed);
        Keyboard(window).type(u"4006aB-1"_s + end, 5);
        if (toHost)
            QCOMPARE(stands(), before);
        else
            QTEST(stands(), "stands");
        QCOMPARE(codes(), toHost ? QStringList(u"4006aB-1"_s) : QStringList());
        QCOMPARE(refusals().size(), 0);
        QCOMPARE(pressed.size(), 0);
        QCOMPARE(entered.size(), 0);
        QCOMPARE(passwordEntered.size(), name == u"password"_s && end == u'\r' ? 1 : 0); // nobody looks at its keys
        QCOMPARE(window.focusWidget() == control, name != u"password"_s || end == u'\r');
        m_read->clear();
    }
}

void CodeKeysTest::personIsNotNoticed_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("gap");
    QTest::newRow("steady") << u"Milk 1 l\t52\r"_s << 120;
    QTest::newRow("quick") << u"Milk 1 l\t52\r"_s << 60;
    QTest::newRow("three in a row") << u"the\r"_s << 20;
    QTest::newRow("no end") << u"123456789"_s << 20;
    QTest::newRow("blanks") << u"   "_s << 120;
}

/// The same events reach the same widgets in the same order, bearing the same, with the filter as without.
void CodeKeysTest::personIsNotNoticed()
{
    QFETCH(const QString, text);
    QFETCH(const int, gap);
    for (const QString &name : {u"text"_s, u"longText"_s, u"editList"_s, u"password"_s, u"figure"_s, u"spin"_s,
                                u"list"_s, u"tabs"_s, u"rows"_s, u"button"_s}) {
        const auto run = [&](bool recognises) {
            m_keys->setSettings(recognises ? std::optional<CodeReaderSettings>(CodeReaderSettings()) : std::nullopt);
            Window window;
            window.focus(name);
            Log log;
            qApp->installEventFilter(&log);
            Keyboard keyboard(window);
            keyboard.type(text, gap);
            keyboard.pass(1000);
            keyboard.down({.key = Qt::Key_F9}); // lets go of what is held
            return log.take();
        };
        QCOMPARE(run(true), run(false));
        QCOMPARE(codes(), QStringList());
    }
}

void CodeKeysTest::replaysWhenNothingFollows()
{
    Window window;
    window.focus(u"figure"_s);
    Keyboard keyboard(window);
    keyboard.type(u"12"_s, 20);
    QCOMPARE(window.figure->text(), QString());
    QTRY_COMPARE(window.figure->text(), u"12"_s);
    keyboard.type(u"3"_s, 200);
    keyboard.type(u"4"_s, 51);
    QCOMPARE(window.figure->text(), u"123"_s);
    QTRY_COMPARE(window.figure->text(), u"1234"_s);
}

/// A window that was busy gets its keys late, all at once or one by one; the next handler may be busy again.
void CodeKeysTest::arrivalDoesNotCount()
{
    Window window;
    Keyboard keyboard(window);
    keyboard.type(u"4006"_s, 20);
    QTest::qSleep(200); // the time-out is due, and so are the keys: Qt may look at either first
    keyboard.type(u"3813\r"_s, 20);
    QCOMPARE(codes(), QStringList(u"40063813"_s));
    keyboard.type(u"abcd\r"_s, 51);
    QCOMPARE(codes().size(), 1);
}

void CodeKeysTest::repeatsDoNotCount()
{
    Window window;
    window.focus(u"figure"_s);
    Keyboard keyboard(window);
    const Stroke five = strokeOf(u'5');
    keyboard.down(five);
    keyboard.pass(600);
    for (int i = 0; i < 8; ++i) {
        keyboard.pass(30);
        keyboard.up(five);
        keyboard.down(five, i % 2 == 0); // Qt does not mark them all
    }
    keyboard.up(five);
    keyboard.type(u"\r"_s, 30);
    QCOMPARE(window.figure->text(), u"555555555"_s);
    QCOMPARE(codes(), QStringList());
}

void CodeKeysTest::doubledCharacterIsNoRepeat()
{
    Window window;
    Keyboard keyboard(window);
    keyboard.type(u"4"_s, 1);
    keyboard.type(u"0"_s, 1);
    const Stroke zero = strokeOf(u'0');
    keyboard.down(zero, true); // in the millisecond of the release, so Qt takes it for a repeat
    keyboard.up(zero);
    keyboard.type(u"6\r"_s, 1);
    QCOMPARE(codes(), QStringList(u"4006"_s));
}

void CodeKeysTest::noTimeNoCode()
{
    Window window;
    window.focus(u"figure"_s);
    Keyboard keyboard(window);
    keyboard.stopClock();
    keyboard.type(u"4006\r"_s, 0);
    QCOMPARE(window.figure->text(), u"4006"_s);
    QTest::keyClicks(window.figure, u"381333931"_s);
    QTest::keyClick(window.figure, Qt::Key_Return);
    QCOMPARE(window.figure->text(), u"4006381333931"_s);
    QCOMPARE(codes(), QStringList());
}

void CodeKeysTest::modifiersPass()
{
    Window window;
    Keyboard keyboard(window);
    const Stroke shift{.key = Qt::Key_Shift, .modifiers = Qt::ShiftModifier};
    for (const QChar sign : u"ABCD"_s) {
        keyboard.pass(3);
        keyboard.down(shift);
        keyboard.type(QString(sign), 3);
        keyboard.up(shift);
    }
    keyboard.type(u"\r"_s, 3);
    QCOMPARE(codes(), QStringList(u"ABCD"_s));
}

/// Ctrl+C and Alt+S are no characters, and do what they did; what was typed before them comes before them.
void CodeKeysTest::commandsPass()
{
    Window window;
    window.activateWindow();
    QTRY_VERIFY(window.isActiveWindow());
    window.focus(u"figure"_s);
    QSignalSpy pressed(window.button, &QPushButton::clicked);
    Keyboard keyboard(window);
    keyboard.type(u"12"_s, 5);
    keyboard.down({.key = Qt::Key_A, .text = u"\x01"_s, .modifiers = Qt::ControlModifier});
    QCOMPARE(window.figure->selectedText(), u"12"_s);
    keyboard.type(u"3"_s, 5);
    keyboard.down({.key = Qt::Key_Backspace, .text = u"\b"_s});
    QCOMPARE(window.figure->text(), QString());
    keyboard.type(u"4"_s, 5);
    keyboard.down({.key = Qt::Key_S, .text = u"s"_s, .modifiers = Qt::AltModifier});
    QCOMPARE(window.figure->text(), u"4"_s);
    QTRY_COMPARE(pressed.size(), 1);
}

/// A key that is a shortcut by itself is one when it is replayed, unless the focus wants it.
void CodeKeysTest::plainShortcuts()
{
    Window window;
    window.activateWindow();
    QTRY_VERIFY(window.isActiveWindow());
    const QShortcut shortcut(Qt::Key_X, &window);
    QSignalSpy fired(&shortcut, &QShortcut::activated);
    Keyboard keyboard(window);
    keyboard.type(u"x"_s, 100);
    QCOMPARE(fired.size(), 0);
    QTRY_COMPARE(fired.size(), 1);
    keyboard.pass(100);
    keyboard.type(u"xxxx\r"_s, 5);
    QCOMPARE(codes(), QStringList(u"xxxx"_s));
    QCOMPARE(fired.size(), 1);
    window.focus(u"figure"_s);
    keyboard.type(u"x"_s, 100);
    QTRY_COMPARE(window.figure->text(), u"x"_s);
    QCOMPARE(fired.size(), 1);
}

void CodeKeysTest::prefixStaysOutOfEntries()
{
    m_keys->setSettings(CodeReaderSettings{.prefix = u"]"_s});
    Window window;
    window.focus(u"text"_s);
    Keyboard keyboard(window);
    keyboard.type(u"]4006\r"_s, 5);
    QCOMPARE(window.text->text(), u"4006"_s);
    keyboard.type(u"12"_s, 100);
    QCOMPARE(window.text->text(), u"400612"_s); // held no longer
    keyboard.type(u"]"_s, 100);
    QTRY_COMPARE(window.text->text(), u"400612]"_s);
    window.button->setFocus();
    keyboard.pass(100);
    keyboard.type(u"]abcd\r"_s, 5);
    QCOMPARE(codes(), QStringList(u"abcd"_s));
}

void CodeKeysTest::boxIsNotAnswered()
{
    Window window;
    QMessageBox box(QMessageBox::Question, {}, u"Really?"_s, QMessageBox::Yes | QMessageBox::No, &window);
    box.open();
    Keyboard keyboard(box);
    keyboard.type(u"yn12\r"_s, 5);
    QVERIFY(box.isVisible());
    QCOMPARE(refusals(), QList{CodeKeys::Refusal::BoxOpen});
    Keyboard behind(window); // the window system may still give the keys to the window
    behind.pass(500);
    behind.type(u"yn12\r"_s, 5);
    QCOMPARE(refusals().size(), 2);
    QVERIFY(box.isVisible());
    keyboard.type(u"n"_s, 100);
    QTRY_VERIFY(!box.isVisible());
    QCOMPARE(box.standardButton(box.clickedButton()), QMessageBox::No);
    QCOMPARE(codes(), QStringList());
}

void CodeKeysTest::inputBoxGetsNothing()
{
    QDialog box;
    auto *entry = new QLineEdit(&box);
    box.open();
    entry->setFocus();
    Keyboard keyboard(box);
    keyboard.type(u"4006\r"_s, 5);
    QCOMPARE(entry->text(), QString());
    QCOMPARE(refusals(), QList{CodeKeys::Refusal::BoxOpen});
    keyboard.type(u"1.50"_s, 100);
    QTRY_COMPARE(entry->text(), u"1.50"_s);
    entry->setEchoMode(QLineEdit::Password);
    keyboard.type(u"4006"_s, 5);
    QCOMPARE(entry->text(), u"1.504006"_s);
    QCOMPARE(refusals().size(), 1);
}

/// What was typed right before a box came up is not for it, nor for what it covers.
void CodeKeysTest::boxOpenedByAReplayedKey()
{
    Window window;
    window.activateWindow();
    QTRY_VERIFY(window.isActiveWindow());
    const auto *list = window.findChild<QComboBox *>(u"list"_s);
    window.focus(u"list"_s);
    const QShortcut shortcut(Qt::Key_X, &window);
    int boxes = 0;
    connect(&shortcut, &QShortcut::activated, &window, [&] {
        QMessageBox box(&window);
        QTimer::singleShot(0, &box, &QDialog::accept);
        box.exec();
        ++boxes;
    });
    Keyboard keyboard(window);
    keyboard.type(u"x"_s, 20);
    keyboard.down({.key = Qt::Key_Down});
    QCOMPARE(boxes, 1);
    QCOMPARE(list->currentIndex(), 0);
    keyboard.down({.key = Qt::Key_Down});
    QCOMPARE(list->currentIndex(), 1);
}

void CodeKeysTest::focusThatMoves()
{
    Window window;
    window.focus(u"figure"_s);
    Keyboard keyboard(window);
    keyboard.type(u"5"_s, 100);
    window.button->setFocus();
    QTRY_COMPARE(window.figure->text(), u"5"_s); // where it was typed
    keyboard.pass(100);
    keyboard.type(u"40"_s, 5);
    window.focus(u"text"_s);
    keyboard.type(u"06\r"_s, 5);
    QCOMPARE(codes().size() + refusals().size(), 1);
    QCOMPARE(window.text->text(), QString());
}

/// A box that goes while a code is being read: it began at the box.
void CodeKeysTest::codeOverTheFocusOfABox()
{
    Window window;
    auto box = std::make_unique<QMessageBox>(&window);
    box->open();
    Keyboard keyboard(window);
    keyboard.type(u"40"_s, 5);
    box.reset();
    keyboard.type(u"06\r"_s, 5);
    QCOMPARE(refusals(), QList{CodeKeys::Refusal::BoxOpen});
    QCOMPARE(codes(), QStringList());
}

void CodeKeysTest::tooLong()
{
    Window window;
    Keyboard keyboard(window);
    QSignalSpy pressed(window.button, &QPushButton::clicked);
    keyboard.type(QString(65, u'7') + u'\r', 5);
    QCOMPARE(refusals(), QList{CodeKeys::Refusal::TooLong});
    QCOMPARE(pressed.size(), 0);
    window.focus(u"text"_s);
    keyboard.pass(500);
    keyboard.type(QString(65, u'7') + u'\r', 5);
    QCOMPARE(window.text->text(), QString(65, u'7'));
    QCOMPARE(refusals().size(), 1);
}

void CodeKeysTest::twoReaders()
{
    Window window;
    window.focus(u"figure"_s);
    Keyboard keyboard(window);
    keyboard.type(u"4509060138\r234\r"_s, 5);
    QCOMPARE(codes(), QStringList(u"4509060138"_s));
    QCOMPARE(refusals(), QList{CodeKeys::Refusal::Mixed});
    keyboard.type(u"abcd\r1234\r"_s, 5);
    QCOMPARE(codes(), (QStringList{u"4509060138"_s, u"+abcd"_s, u"+1234"_s}));
    QCOMPARE(window.figure->text(), QString());
}

void CodeKeysTest::rulesComeAndGo()
{
    Window window;
    window.focus(u"figure"_s);
    Keyboard keyboard(window);
    keyboard.type(u"12"_s, 5);
    m_keys->setSettings({});
    QCOMPARE(window.figure->text(), u"12"_s);
    keyboard.type(u"3456\r"_s, 5);
    QCOMPARE(window.figure->text(), u"123456"_s);
    m_keys->setSettings(CodeReaderSettings{.longestGapMs = 100});
    keyboard.type(u"3456\r"_s, 99);
    QCOMPARE(codes(), QStringList(u"3456"_s));
}

HARROWBY_TEST(code_keys_test, CodeKeysTest)
#include "code_keys_test.moc"
