// SPDX-License-Identifier: MIT
#include "basic/helper_process.h"

#include "tests/program/test_program.h"

#include <QPointer>
#include <QTest>

#include <memory>
#include <optional>

using namespace harrowby;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

class HelperProcessTest : public QObject
{
    Q_OBJECT

private:
    std::optional<HelperProcess::Outcome> m_outcome;
    int m_calls = 0;

    void start(HelperProcess &helper, const QString &script, std::chrono::milliseconds deadline = 30s)
    {
        helper.start(u"sh"_s, {u"-c"_s, script}, deadline, [this](const HelperProcess::Outcome &outcome) {
            m_outcome = outcome;
            ++m_calls;
        });
    }

private Q_SLOTS:
    void init()
    {
        m_outcome.reset();
        m_calls = 0;
    }

    void outcome_data()
    {
        QTest::addColumn<QString>("script");
        QTest::addColumn<bool>("succeeded");
        QTest::addColumn<QByteArray>("output");
        QTest::addColumn<QString>("reason");
        QTest::newRow("success") << u"echo yes"_s << true << "yes\n"_ba << QString();
        QTest::newRow("failure") << u"echo yes; echo no >&2; exit 3"_s << false << "yes\n"_ba << u"no"_s;
        QTest::newRow("silent failure") << u"exit 3"_s << false << ""_ba << u"sh failed with 3"_s;
        QTest::newRow("crash") << u"kill -KILL $$"_s << false << ""_ba << u"sh crashed"_s;
        QTest::newRow("English") << u"echo $LC_ALL"_s << true << "C.UTF-8\n"_ba << QString();
        QTest::newRow("no input") << u"cat"_s << true << ""_ba << QString();
    }

    void outcome()
    {
        QFETCH(const QString, script);
        for (const bool blocking : {false, true}) {
            init();
            HelperProcess helper(nullptr);
            start(helper, script);
            QVERIFY(!helper.isSettled());
            if (blocking)
                helper.wait(30s);
            QTRY_VERIFY_WITH_TIMEOUT(helper.isSettled(), 30000);
            QCOMPARE(m_calls, 1);
            QTEST(m_outcome->succeeded, "succeeded");
            QTEST(m_outcome->output, "output");
            QTEST(m_outcome->reason, "reason");
        }
    }

    void input()
    {
        HelperProcess helper(nullptr);
        const QByteArray bytes("\x1bp\0\x19", 4);
        helper.setInput(bytes);
        start(helper, u"cat"_s);
        QTRY_VERIFY_WITH_TIMEOUT(helper.isSettled(), 30000);
        QCOMPARE(m_outcome->output, bytes);
        // One that reads nothing of it is no failure.
        HelperProcess deaf(nullptr);
        deaf.setInput(QByteArray(1'000'000, 'x'));
        start(deaf, u"exec true"_s);
        QTRY_VERIFY_WITH_TIMEOUT(deaf.isSettled(), 30000);
        QVERIFY2(m_outcome->succeeded, qPrintable(m_outcome->reason));
    }

    void aMissingProgram()
    {
        HelperProcess helper(nullptr);
        helper.start(u"no-such-program"_s, {}, 30s, [this](const auto &outcome) { m_outcome = outcome; });
        QTRY_VERIFY_WITH_TIMEOUT(m_outcome, 30000);
        QVERIFY(!m_outcome->succeeded);
        QVERIFY(m_outcome->reason.startsWith(u"no-such-program: "_s));
    }

    void theDeadlineEndsIt()
    {
        HelperProcess helper(nullptr);
        start(helper, u"exec sleep 60"_s, 50ms);
        QTRY_VERIFY_WITH_TIMEOUT(helper.isSettled(), 30000);
        QVERIFY(!m_outcome->succeeded);
        QCOMPARE(m_outcome->reason, u"no answer within 0.05 s"_s);
        QTest::qWait(0);
        QCOMPARE(m_calls, 1);
    }

    void waitingIsBounded()
    {
        HelperProcess helper(nullptr);
        start(helper, u"exec sleep 60"_s);
        helper.wait(50ms);
        QVERIFY(!helper.isSettled());
        helper.abandon(u"enough"_s);
        QCOMPARE(m_outcome->reason, u"enough"_s);
    }

    void destroyedWhileItRuns()
    {
        auto helper = std::make_unique<HelperProcess>(nullptr);
        start(*helper, u"exec sleep 60"_s);
        helper.reset();
        QCOMPARE(m_calls, 0);
    }

    void itMayDestroyItself()
    {
        auto *const helper = new HelperProcess(this);
        const QPointer<HelperProcess> guard(helper);
        helper->start(u"true"_s, {}, 30s, [helper](const auto &) { helper->deleteLater(); });
        QTRY_VERIFY_WITH_TIMEOUT(!guard, 30000);
    }
};

HARROWBY_CORE_TEST(helper_process_test, HelperProcessTest)
#include "helper_process_test.moc"
