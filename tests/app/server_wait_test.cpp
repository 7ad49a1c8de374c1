// SPDX-License-Identifier: MIT
#include "app/server/input_dam.h"
#include "app/server/server_wait.h"
#include "tests/program/test_program.h"

#include <QAbstractEventDispatcher>
#include <QCloseEvent>
#include <QDialog>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPushButton>
#include <QScreen>
#include <QTest>
#include <QTimer>
#include <QtTest/qtestspontaneevent.h>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;
using namespace std::chrono_literals;

namespace {

/// A window, a wait, and a clock that a test turns.
struct Waiting
{
    Waiting()
    {
        window.resize(800, 600);
        window.show();
        (void)QTest::qWaitForWindowExposed(&window);
    }

    /// The hook's call at this moment.
    bool at(std::chrono::milliseconds moment, DbWait::For what = DbWait::For::Answer)
    {
        now = 1h + moment;
        return wait.goesOn({what, {}, false});
    }
    /// The same, where answers have come meanwhile.
    bool amongShortOnesAt(std::chrono::milliseconds moment)
    {
        now = 1h + moment;
        return wait.goesOn({DbWait::For::Answer, {}, true, true});
    }

    [[nodiscard]] const QWidget *sign() const
    {
        const auto *widget = window.findChild<QWidget *>(u"waitSign"_s);
        return widget != nullptr && widget->isVisible() ? widget : nullptr;
    }
    [[nodiscard]] QImage picture() const
    {
        const QRect place(sign()->mapToGlobal(QPoint(0, 0)), sign()->size());
        return window.screen()->grabWindow(0, place.x(), place.y(), place.width(), place.height()).toImage();
    }

    QWidget window;
    std::chrono::milliseconds now{0};
    ServerWait wait{{}, [this] { return now; }};
};

/// How often these windows paint themselves.
class PaintCounter : public QObject
{
public:
    explicit PaintCounter(const QList<QWidget *> &windows) : m_windows(windows)
    {
        for (QWidget *window : windows)
            window->installEventFilter(this);
        forget();
    }

    [[nodiscard]] const QList<int> &counts() const { return m_counts; }
    void forget() { m_counts = QList<int>(m_windows.size(), 0); }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::Paint)
            ++m_counts[m_windows.indexOf(static_cast<QWidget *>(watched))];
        return false;
    }

private:
    QList<QWidget *> m_windows;
    QList<int> m_counts;
};

} // namespace

/// What a window shows while the server is waited for, and what it takes meanwhile: nothing.
class ServerWaitTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void waitIsShownInTime();
    void windowsArePaintedOnceWhenASignComes();
    void waitsAreNotAddedUp();
    void waitsOfSeveralTurnsAreNotAddedUp();
    void manyShortWaitsAreShownButTakeNothing();
    void signSaysWhatIsWaitedFor_data();
    void signSaysWhatIsWaitedFor();
    void whatIsPressedDuringAWaitIsLost();
    void whatIsTypedDuringAWaitIsLost();
    void waitsOfOneHandlerAreOnePeriod();
    void windowIsNotClosedByWhatWasPressedDuringAWait();
    void windowThatTheProgramClosesGoes();
};

/// The hook is called every 50 ms at most, the first time 50 ms after the wait has begun; no 100 ms pass between two
/// pictures.
void ServerWaitTest::waitIsShownInTime()
{
    Waiting till;
    QVERIFY(till.at(0ms)); // has waited for 50 ms
    QVERIFY(till.sign() == nullptr);
    QVERIFY(till.at(40ms));
    QVERIFY(till.sign() != nullptr);
    const QImage first = till.picture();
    QVERIFY(till.at(80ms));
    QVERIFY(till.picture() != first); // something moves
    QCoreApplication::processEvents();
    QVERIFY(till.sign() == nullptr);
}

/// So nothing stays of a box that was answered right before; and what is painted again and again is the sign alone.
void ServerWaitTest::windowsArePaintedOnceWhenASignComes()
{
    Waiting till;
    QWidget customers;
    customers.show();
    QVERIFY(QTest::qWaitForWindowExposed(&customers));
    PaintCounter counter({&till.window, &customers});
    QVERIFY(till.at(0ms));
    QCOMPARE(counter.counts(), (QList<int>{0, 0}));
    for (auto moment = 50ms; moment <= 500ms; moment += 50ms)
        QVERIFY(till.at(moment));
    QCOMPARE(counter.counts(), (QList<int>{1, 1}));
    QCoreApplication::processEvents(); // the sign goes
    counter.forget();
    QVERIFY(till.at(1000ms));
    QVERIFY(till.at(1050ms));
    QCOMPARE(counter.counts(), (QList<int>{1, 1}));
}

/// Statements that wait a little each, with pauses between them, are no wait to be shown.
void ServerWaitTest::waitsAreNotAddedUp()
{
    Waiting till;
    for (const auto moment : {0ms, 200ms, 400ms, 600ms})
        QVERIFY(till.at(moment));
    QVERIFY(till.sign() == nullptr);
}

/// An undo lets the event loop run after each line.
void ServerWaitTest::waitsOfSeveralTurnsAreNotAddedUp()
{
    Waiting till;
    for (auto moment = 0ms; moment <= 600ms; moment += 60ms) {
        QVERIFY(till.amongShortOnesAt(moment));
        QVERIFY2(till.sign() == nullptr, qPrintable(QString::number(moment.count())));
        QCoreApplication::processEvents();
    }
    QLineEdit entry;
    QVERIFY(till.at(1000ms));
    QCoreApplication::processEvents();
    QVERIFY(till.at(1120ms));
    QVERIFY(till.at(1160ms));
    QVERIFY(till.sign() != nullptr);
    QKeyEvent between(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier, u"a"_s);
    between.setTimestamp(static_cast<quint64>((1h + 1060ms).count()));
    QCoreApplication::sendEvent(&entry, &between);
    QCOMPARE(entry.text(), u"a"_s);
}

/// A list of many statements over a long line: what is typed ahead reaches the window, as it does on a file. Once one
/// of them is not answered in time, what is typed from then on is lost as in any wait.
void ServerWaitTest::manyShortWaitsAreShownButTakeNothing()
{
    Waiting till;
    QLineEdit entry;
    const auto type = [&entry](const QString &text, std::chrono::milliseconds moment) {
        QKeyEvent event(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier, text);
        event.setTimestamp(static_cast<quint64>((1h + moment).count()));
        QCoreApplication::sendEvent(&entry, &event);
    };
    for (const auto moment : {0ms, 50ms, 100ms, 150ms}) {
        QVERIFY(till.amongShortOnesAt(moment));
        QVERIFY(till.sign() == nullptr);
    }
    QVERIFY(till.amongShortOnesAt(180ms));
    QVERIFY(till.sign() != nullptr);
    QCOMPARE(till.sign()->accessibleDescription(), u"The server answers slowly."_s);
    for (const auto moment : {230ms, 280ms})
        QVERIFY(till.at(moment));
    QCOMPARE(till.sign()->accessibleDescription(), u"The server has not answered yet."_s);
    QVERIFY(till.amongShortOnesAt(310ms)); // one is none
    QCOMPARE(till.sign()->accessibleDescription(), u"The server has not answered yet."_s);
    QVERIFY(till.amongShortOnesAt(330ms)); // it does again, and input stays out
    QCOMPARE(till.sign()->accessibleDescription(), u"The server answers slowly."_s);
    type(u"a"_s, 60ms);
    type(u"b"_s, 120ms);
    type(u"c"_s, 250ms);
    type(u"d"_s, 340ms);
    QCOMPARE(entry.text(), u"ab"_s);
}

void ServerWaitTest::signSaysWhatIsWaitedFor_data()
{
    QTest::addColumn<DbWait::For>("what");
    QTest::addColumn<QString>("text");
    QTest::newRow("connection") << DbWait::For::Connection
                                << u"The server cannot be reached. Trying again (2 s) \u2026"_s;
    QTest::newRow("answer") << DbWait::For::Answer << u"The server has not answered yet (2 s)."_s;
    QTest::newRow("lock") << DbWait::For::Lock << u"Another till or the office keeps what is needed locked (2 s)."_s;
}

void ServerWaitTest::signSaysWhatIsWaitedFor()
{
    QFETCH(const DbWait::For, what);
    QFETCH(const QString, text);
    Waiting till;
    for (auto moment = 0ms; moment <= 2000ms; moment += 50ms)
        QVERIFY(till.at(moment, what));
    QVERIFY(till.sign() != nullptr);
    QCOMPARE(till.sign()->accessibleName(), u"Waiting for the server"_s);
    QCOMPARE(till.sign()->accessibleDescription(), text);
}

void ServerWaitTest::whatIsPressedDuringAWaitIsLost()
{
    InputDam dam;
    dam.hold(1000ms, 2000ms);
    QPushButton button(u"Sell"_s);
    button.resize(100, 44);
    int clicks = 0;
    connect(&button, &QPushButton::clicked, this, [&clicks] { ++clicks; });
    const auto send = [&button](QEvent::Type type, quint64 time) {
        const auto held = type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton;
        QMouseEvent event(type, QPointF(10, 10), QPointF(10, 10), Qt::LeftButton, held, Qt::NoModifier);
        event.setTimestamp(time);
        QCoreApplication::sendEvent(&button, &event);
    };
    send(QEvent::MouseButtonPress, 1500);
    send(QEvent::MouseButtonRelease, 2500); // of what was pressed during the wait
    QCOMPARE(clicks, 0);
    QVERIFY(!button.isDown());
    send(QEvent::MouseButtonPress, 999);
    send(QEvent::MouseButtonRelease, 1500); // of what was pressed before it
    QCOMPARE(clicks, 1);
    send(QEvent::MouseButtonPress, 2001);
    send(QEvent::MouseButtonRelease, 2002);
    QCOMPARE(clicks, 2);
    QTest::mouseClick(&button, Qt::LeftButton); // by a program, without a time
    QCOMPARE(clicks, 3);
}

void ServerWaitTest::whatIsTypedDuringAWaitIsLost()
{
    InputDam dam;
    // X servers count in 32 bits: this wait goes on over their end.
    constexpr auto end = std::chrono::milliseconds(std::int64_t{1} << 32);
    dam.hold(end - 500ms, end + 500ms);
    QLineEdit entry;
    const auto type = [&entry](const QString &text, quint64 time) {
        QKeyEvent event(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier, text);
        event.setTimestamp(time);
        QCoreApplication::sendEvent(&entry, &event);
    };
    type(u"a"_s, 0xffffff00);
    type(u"b"_s, 100);
    type(u"c"_s, 501);
    type(u"d"_s, 0xfffffe00 - 1000);
    QCOMPARE(entry.text(), u"cd"_s);
}

/// A purchase whose first line has waited for a new server waits for a list once more, before what was pressed first
/// has come out of the queue.
void ServerWaitTest::waitsOfOneHandlerAreOnePeriod()
{
    Waiting till;
    QLineEdit entry;
    const auto type = [&entry](const QString &text, std::chrono::milliseconds moment) {
        QKeyEvent event(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier, text);
        event.setTimestamp(static_cast<quint64>((1h + moment).count()));
        QCoreApplication::sendEvent(&entry, &event);
    };
    for (const auto moment : {0ms, 50ms, 100ms, 1000ms, 1050ms})
        QVERIFY(till.at(moment));
    type(u"a"_s, 60ms);
    type(u"b"_s, 500ms);
    type(u"c"_s, 1010ms);
    QCOMPARE(entry.text(), QString());
    QVERIFY(till.wait.wentOnAt(1h + 500ms)); // so that a named reader's code is refused, too
    QVERIFY(!till.wait.wentOnAt(1h + 1500ms));
    QTest::qWait(50); // the event loop has come to all of it
    for (const auto moment : {3000ms, 3050ms})
        QVERIFY(till.at(moment));
    type(u"d"_s, 2000ms); // before this wait
    type(u"e"_s, 3010ms);
    type(u"f"_s, 4000ms);
    QCOMPARE(entry.text(), u"df"_s);
}

void ServerWaitTest::windowIsNotClosedByWhatWasPressedDuringAWait()
{
    QWidget window;
    window.show();
    const auto close = [&window](bool byTheWindowManager) {
        QCloseEvent event;
        if (byTheWindowManager)
            QSpontaneKeyEvent::setSpontaneous(&event);
        QCoreApplication::instance()->notify(&window, &event); // sendEvent() makes it the program's own
        return event.isAccepted();
    };
    const auto turnLoop = [] { QAbstractEventDispatcher::instance()->awake(); };
    const auto press = [&window](quint64 time) {
        QKeyEvent event(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier, u"a"_s);
        event.setTimestamp(time);
        QCoreApplication::sendEvent(&window, &event);
    };
    InputDam dam;
    dam.hold(1000ms, 2000ms);
    turnLoop();
    QVERIFY(!close(true));
    QVERIFY(close(false)); // by the program itself, to a widget that is no window of the screen
    press(1500);
    QVERIFY(!close(true));
    press(2001); // so all of the period has come
    QVERIFY(close(true));
    dam.hold(3000ms, 4000ms);
    turnLoop();
    QVERIFY(!close(true));
    QTest::qWait(50); // the event loop has come to what lay in its queue
    QVERIFY(close(true));
}

/// Qt asks a program's own closing of a window as it asks the window manager's.
void ServerWaitTest::windowThatTheProgramClosesGoes()
{
    InputDam dam;
    QDialog saved;
    QTimer press;
    connect(&press, &QTimer::timeout, &saved, [&dam, &saved] {
        dam.hold(1000ms, 2000ms); // its write was waited for
        saved.accept();
    });
    press.setSingleShot(true);
    press.start(0);
    QTimer::singleShot(5000, &saved, [&saved] { saved.done(-1); });
    QCOMPARE(saved.exec(), static_cast<int>(QDialog::Accepted));
    QVERIFY(!saved.isVisible());

    QWidget window;
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    dam.hold(3000ms, 4000ms);
    QVERIFY(window.close());
}

HARROWBY_TEST(app_server_wait_test, ServerWaitTest)
#include "server_wait_test.moc"
