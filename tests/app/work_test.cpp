// SPDX-License-Identifier: MIT
#include "app/work/work_job.h"
#include "app/work/work_strip.h"
#include "tests/program/test_program.h"
#include "theme/dialogs.h"

#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>

#include <atomic>
#include <latch>
#include <memory>
#include <new>
#include <stdexcept>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;

namespace {

using Words = Result<QString, QString>;

/// Work that goes on until it is let go or cancelled.
class Gate
{
public:
    [[nodiscard]] std::function<QString(const WorkWatch &)> work()
    {
        return [this](const WorkWatch &watch) {
            while (!m_open) {
                if (!watch({u"Waiting \u2026"_s, 40}))
                    return u"cancelled"_s;
                std::this_thread::yield();
            }
            return u"done"_s;
        };
    }
    void open() { m_open = true; }

private:
    std::atomic<bool> m_open = false;
};

} // namespace

class WorkTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void outcomeComesOnTheThreadOfTheJob();
    void movableOutcomesCome();
    void whatIsThrownIsTold_data();
    void whatIsThrownIsTold();
    void oneWorkAtATime();
    void endMayStartTheNext();
    void manyStepsAreFewEvents();
    void cancelStopsTheWork();
    void emptyWatchGoesOn();
    void endOfTheObjectCancels();
    void percent();
    void quickWorkShowsNothing();
    void stripShowsTheWork();
    void focusGoesToCancelAndBack();
    void cancelIsSaid();
    void partsAreTouchSized();

private:
    void startGate();
    template <class Widget>
    [[nodiscard]] Widget *part(const char *name) const
    {
        return m_window->findChild<Widget *>(QString::fromLatin1(name));
    }

    Gate *m_gate = nullptr;
    std::unique_ptr<Gate> m_gateOwner;
    std::unique_ptr<WorkJob> m_job;
    std::unique_ptr<QWidget> m_window;
    QPushButton *m_button = nullptr;
    WorkStrip *m_strip = nullptr;
    QString m_came;
};

void WorkTest::init()
{
    m_gateOwner = std::make_unique<Gate>();
    m_gate = m_gateOwner.get();
    m_job = std::make_unique<WorkJob>();
    m_came.clear();
    m_window = std::make_unique<QWidget>();
    auto *rows = new QVBoxLayout(m_window.get());
    rows->addWidget(new QPushButton(u"Other"_s)); // where Qt would pass the focus to
    m_button = new QPushButton(u"Begin"_s);
    m_strip = new WorkStrip(*m_job);
    m_strip->setDelay(0);
    connect(m_strip, &WorkStrip::busyChanged, m_button, &QPushButton::setDisabled);
    rows->addWidget(m_button);
    rows->addWidget(m_strip);
    dressDialog(*m_window);
    m_window->show();
    m_window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
}

void WorkTest::cleanup()
{
    m_window.reset();
    m_job.reset();
    m_gateOwner.reset();
}

void WorkTest::startGate()
{
    QVERIFY(m_job->start<QString>(m_gate->work(), [this](const Words &words) { m_came = *words; }));
}

void WorkTest::outcomeComesOnTheThreadOfTheJob()
{
    std::thread::id worked;
    std::thread::id ended;
    int came = 0;
    bool running = true;
    m_job->start<int>(
        [&](const WorkWatch &) {
            worked = std::this_thread::get_id();
            return 7;
        },
        [&](const Result<int, QString> &outcome) {
            ended = std::this_thread::get_id();
            came = *outcome;
            running = m_job->isRunning();
        });
    QVERIFY(m_job->isRunning());
    QTRY_COMPARE(came, 7);
    QVERIFY(!running);
    QCOMPARE(ended, std::this_thread::get_id());
    QVERIFY(worked != ended);
}

void WorkTest::movableOutcomesCome()
{
    using Only = std::unique_ptr<int>;
    int came = 0;
    m_job->start<Only>([](const WorkWatch &) { return std::make_unique<int>(3); },
                       [&](Result<Only, QString> outcome) { came = **outcome; });
    QTRY_COMPARE(came, 3);
}

void WorkTest::whatIsThrownIsTold_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("words");
    QTest::newRow("reason") << 0 << u"It broke off (no paper)."_s;
    QTest::newRow("memory") << 1 << u"It broke off (there is not enough memory)."_s;
    QTest::newRow("anything") << 2 << u"It broke off (for an unknown reason)."_s;
}

void WorkTest::whatIsThrownIsTold()
{
    QFETCH(int, kind);
    QFETCH(QString, words);
    QString told;
    m_job->start<int>(
        [kind](const WorkWatch &) -> int {
            if (kind == 0)
                throw std::runtime_error("no paper");
            if (kind == 1)
                throw std::bad_alloc();
            throw 5;
        },
        [&](const Result<int, QString> &outcome) { told = outcome ? u"no error"_s : outcome.error(); });
    QTRY_COMPARE(told, words);
}

void WorkTest::oneWorkAtATime()
{
    startGate();
    QVERIFY(!m_job->start<QString>(m_gate->work(), [](const Words &) { QFAIL("the second work ran"); }));
    m_gate->open();
    QTRY_COMPARE(m_came, u"done"_s);
    QVERIFY(!m_job->isRunning());
}

void WorkTest::endMayStartTheNext()
{
    int came = 0;
    m_job->start<int>([](const WorkWatch &) { return 1; },
                      [&](const Result<int, QString> &) {
                          m_job->start<int>([](const WorkWatch &) { return 2; },
                                            [&](const Result<int, QString> &second) { came = *second; });
                      });
    QTRY_COMPARE(came, 2);
}

void WorkTest::manyStepsAreFewEvents()
{
    const QSignalSpy steps(m_job.get(), &WorkJob::progressed);
    std::latch all(1);
    bool ended = false;
    m_job->start<int>(
        [&](const WorkWatch &watch) {
            for (int i = 0; i < 100'000; ++i)
                (void)watch({u"Row %1"_s.arg(i), percentOf(i, 100'000)});
            all.count_down();
            return 0;
        },
        [&](const Result<int, QString> &) { ended = true; });
    all.wait(); // no event has been handled meanwhile
    QTRY_VERIFY(ended);
    QCOMPARE(steps.size(), 1);
    QCOMPARE(steps.at(0).at(0).value<WorkStep>(), (WorkStep{u"Row 99999"_s, 99}));
}

void WorkTest::cancelStopsTheWork()
{
    const QSignalSpy cancelled(m_job.get(), &WorkJob::cancelled);
    m_job->cancel(); // nothing runs
    QVERIFY(!m_job->isCancelled());
    startGate();
    QVERIFY(!m_job->isCancelled());
    m_job->cancel();
    m_job->cancel();
    QVERIFY(m_job->isCancelled());
    QTRY_COMPARE(m_came, u"cancelled"_s);
    QCOMPARE(cancelled.size(), 1);
    m_gate->open();
    startGate(); // anew, and not cancelled
    QVERIFY(!m_job->isCancelled());
    QTRY_COMPARE(m_came, u"done"_s);
}

void WorkTest::emptyWatchGoesOn()
{
    const std::function<bool(const WorkStep &)> none;
    for (const WorkWatch &watch : {WorkWatch(), WorkWatch(none)})
        QVERIFY(watch({u"counting"_s}));
    QVERIFY(!WorkWatch([](const WorkStep &) { return false; })({u"counting"_s}));
}

void WorkTest::endOfTheObjectCancels()
{
    std::atomic<bool> stopped = false;
    bool called = false;
    {
        WorkJob job;
        job.start<int>(
            [&](const WorkWatch &watch) {
                while (watch({}))
                    std::this_thread::yield();
                stopped = true;
                return 0;
            },
            [&](const Result<int, QString> &) { called = true; });
    }
    QVERIFY(stopped);
    QCoreApplication::processEvents();
    QVERIFY(!called);
}

void WorkTest::percent()
{
    QCOMPARE(percentOf(0, 0), WorkStep::unknown);
    QCOMPARE(percentOf(0, 3), 0);
    QCOMPARE(percentOf(2, 3), 66);
    QCOMPARE(percentOf(3, 3), 100);
    QCOMPARE(percentOf(4, 3), 100);
}

void WorkTest::quickWorkShowsNothing()
{
    m_strip->setDelay(600'000);
    const QSignalSpy busy(m_strip, &WorkStrip::busyChanged);
    startGate();
    QCoreApplication::processEvents();
    QVERIFY(!m_strip->isVisible());
    m_gate->open();
    QTRY_COMPARE(m_came, u"done"_s);
    QVERIFY(!m_strip->isVisible());
    QCOMPARE(busy.size(), 0);
}

void WorkTest::stripShowsTheWork()
{
    QVERIFY(!m_strip->isVisible());
    startGate();
    QTRY_VERIFY(m_strip->isVisible());
    QTRY_COMPARE(part<QLabel>("workWords")->text(), u"Waiting \u2026"_s);
    QCOMPARE(part<QProgressBar>("workProgress")->maximum(), 100);
    QCOMPARE(part<QProgressBar>("workProgress")->value(), 40);
    m_gate->open();
    QTRY_COMPARE(m_came, u"done"_s);
    QVERIFY(!m_strip->isVisible());
}

void WorkTest::focusGoesToCancelAndBack()
{
    m_button->setFocus();
    startGate();
    QTRY_VERIFY(m_strip->isVisible());
    QVERIFY(!m_button->isEnabled());
    QVERIFY(part<QPushButton>("workCancel")->hasFocus());
    m_gate->open();
    QTRY_COMPARE(m_came, u"done"_s);
    QVERIFY(m_button->isEnabled());
    QVERIFY(m_button->hasFocus());
}

void WorkTest::cancelIsSaid()
{
    // Goes on when it is cancelled, as one that is in the middle of a statement does.
    std::latch go(1);
    bool ended = false;
    m_job->start<int>(
        [&](const WorkWatch &watch) {
            (void)watch({u"Waiting \u2026"_s, 40});
            go.wait();
            (void)watch({u"Waiting still \u2026"_s, 41});
            return 0;
        },
        [&](const Result<int, QString> &) { ended = true; });
    QTRY_VERIFY(m_strip->isVisible());
    QTest::mouseClick(part<QPushButton>("workCancel"), Qt::LeftButton);
    QCOMPARE(part<QLabel>("workWords")->text(), u"It is being stopped \u2026"_s);
    QCOMPARE(part<QProgressBar>("workProgress")->maximum(), 0);
    QVERIFY(part<QPushButton>("workCancel")->hasFocus());
    go.count_down();
    QTRY_VERIFY(ended);
    QCOMPARE(part<QLabel>("workWords")->text(), u"It is being stopped \u2026"_s);
}

void WorkTest::partsAreTouchSized()
{
    startGate();
    QTRY_VERIFY(m_strip->isVisible());
    QVERIFY(part<QPushButton>("workCancel")->height() >= 44);
    QCOMPARE(part<QProgressBar>("workProgress")->accessibleName(), u"Progress"_s);
    m_gate->open();
    QTRY_COMPARE(m_came, u"done"_s);
}

HARROWBY_TEST(app_work_test, WorkTest)
#include "work_test.moc"
