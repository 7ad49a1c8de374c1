// SPDX-License-Identifier: MIT
#include "platform/breather.h"

#include "tests/program/test_program.h"

#include <QElapsedTimer>
#include <QTest>
#include <QTimer>

#include <functional>
#include <memory>

using namespace harrowby;

namespace {

/// Counts calls of processEvents(): its event posts itself again each time it is handled.
class RoundCounter : public QObject
{
public:
    RoundCounter() { requeue(); }
    int rounds = 0;

    bool event(QEvent *event) override
    {
        if (event->type() != QEvent::User)
            return QObject::event(event);
        ++rounds;
        QTimer::singleShot(0, this, [this] { requeue(); });
        return true;
    }

private:
    void requeue() { QCoreApplication::postEvent(this, new QEvent(QEvent::User)); }
};

} // namespace

class BreatherTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void doesNotHandleEventsAtEveryRow()
    {
        RoundCounter counter;
        Breather breather;
        QElapsedTimer timer;
        timer.start();
        for (int row = 0; row < 10'000; ++row)
            breather.breathe();
        // At most two counts in one processEvents(), which is called at most every 16 ms.
        QVERIFY2(counter.rounds <= 2 * (timer.elapsed() / 16 + 1), qPrintable(QString::number(counter.rounds)));
    }

    void handlesAnEventDuringALongLoop()
    {
        bool handled = false;
        QObject context;
        QTimer::singleShot(0, &context, [&handled] { handled = true; });
        Breather breather;
        QElapsedTimer timer;
        timer.start();
        while (!handled && timer.elapsed() < 10'000)
            breather.breathe();
        QVERIFY(handled);
    }

    void aSlowEventIsNotFollowedByAnotherAtOnce()
    {
        Breather breather;
        QObject events; // context of the queued calls: drops them, also when the test fails
        int slowEvents = 0;
        std::function<void()> slow = [&] {
            ++slowEvents;
            QTest::qSleep(20);
            QTimer::singleShot(0, &events, slow);
        };
        QTimer::singleShot(0, &events, slow);
        while (slowEvents == 0)
            breather.breathe();
        const int before = slowEvents;
        breather.breathe();
        QCOMPARE(slowEvents, before);
    }

    void restsAnewWhenItIsTold()
    {
        Breather breather;
        QTest::qSleep(20);
        bool handled = false;
        QObject context;
        QTimer::singleShot(0, &context, [&handled] { handled = true; });
        breather.rest();
        breather.breathe();
        QVERIFY(!handled);
        QTest::qSleep(30);
        breather.breathe();
        QVERIFY(handled);
    }

    void aSlowRowAmongQuickOnesIsSeen()
    {
        Breather breather;
        for (int row = 0; row < 10'000; ++row)
            breather.breathe();
        bool handled = false;
        QObject context;
        QTimer::singleShot(0, &context, [&handled] { handled = true; });
        QTest::qSleep(60);
        for (int row = 0; row < 9; ++row)
            breather.breathe();
        QVERIFY(handled);
    }

    void showsRightBeforeTheEvents()
    {
        QStringList order;
        QObject context;
        QTimer::singleShot(0, &context, [&order] { order << QStringLiteral("event"); });
        Breather breather;
        breather.breathe([&order] { order << QStringLiteral("too soon"); });
        QTest::qSleep(30);
        breather.breathe([&order] { order << QStringLiteral("show"); });
        QCOMPARE(order, (QStringList{QStringLiteral("show"), QStringLiteral("event")}));
    }

    void anEventMayDestroyIt()
    {
        auto breather = std::make_unique<Breather>();
        QObject context;
        QTimer::singleShot(0, &context, [&breather] { breather.reset(); });
        QElapsedTimer timer;
        timer.start();
        while (breather && timer.elapsed() < 10'000)
            breather->breathe();
        QVERIFY(!breather);
    }
};

HARROWBY_CORE_TEST(breather_test, BreatherTest)
#include "breather_test.moc"
