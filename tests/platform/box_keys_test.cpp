// SPDX-License-Identifier: MIT
#include "platform/boxes.h"

#include "input/early_key_filter.h"
#include "tests/platform/shown_box.h"
#include "tests/program/test_program.h"

#include <QAbstractButton>
#include <QDialog>
#include <QKeyEvent>
#include <QMessageBox>
#include <QTest>
#include <QTimer>

#include <functional>
#include <memory>

using namespace harrowby;
using namespace harrowby::testing;
using namespace Qt::StringLiterals;

namespace {

/// Acts once a box is shown and before it has been painted.
class WhenItComes : public QObject
{
public:
    WhenItComes(QDialog &box, std::function<void()> act) : QObject(&box), m_act(std::move(act))
    {
        box.installEventFilter(this);
    }

    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::Show)
            m_act();
        return false;
    }

private:
    std::function<void()> m_act;
};

/// The focus widget of a box: its default button, or its entry.
QWidget *focusOf(QDialog &box)
{
    return box.focusWidget() != nullptr ? box.focusWidget() : &box;
}

void sendKey(QDialog &box, QEvent::Type type, Qt::Key key, bool repeated, quint64 time = 0)
{
    QKeyEvent event(type, key, Qt::NoModifier, key == Qt::Key_Space ? u" "_s : QString(), repeated);
    event.setTimestamp(time);
    QCoreApplication::sendEvent(focusOf(box), &event);
}

} // namespace

/// Keys that were not meant for a box do not answer it.
class BoxKeysTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aKeyBeforeTheBoxIsSeenAnswersNothing_data();
    void aKeyBeforeTheBoxIsSeenAnswersNothing();
    void aKeyHeldDownSinceAnswersNothing_data();
    void aKeyHeldDownSinceAnswersNothing();
    void aHeldAcceleratorAnswersNothing();
    void aBoxShownAgainIsGuardedAgain();
    void keysBeforeAnInputAreNotTyped();
};

void BoxKeysTest::aKeyBeforeTheBoxIsSeenAnswersNothing_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::addColumn<Qt::KeyboardModifiers>("held");
    QTest::newRow("Return") << Qt::Key_Return << Qt::KeyboardModifiers();
    QTest::newRow("Enter") << Qt::Key_Enter << Qt::KeyboardModifiers(Qt::KeypadModifier);
    QTest::newRow("Space") << Qt::Key_Space << Qt::KeyboardModifiers();
    QTest::newRow("Escape") << Qt::Key_Escape << Qt::KeyboardModifiers();
    QTest::newRow("N") << Qt::Key_N << Qt::KeyboardModifiers();
    QTest::newRow("Alt+N") << Qt::Key_N << Qt::KeyboardModifiers(Qt::AltModifier);
}

void BoxKeysTest::aKeyBeforeTheBoxIsSeenAnswersNothing()
{
    QFETCH(const Qt::Key, key);
    QFETCH(const Qt::KeyboardModifiers, held);
    QtBoxes boxes;
    bool stoodThere = false;
    boxes.setObserver([&](QDialog &box) {
        new WhenItComes(box, [&] { QTest::keyClick(focusOf(box), key, held); });
        QTimer::singleShot(0, &box, [&] {
            (void)QTest::qWaitFor([&] { return EarlyKeyFilter::acceptsKeys(box); });
            stoodThere = box.isVisible();
            static_cast<QMessageBox &>(box).button(QMessageBox::Cancel)->click();
        });
    });
    QCOMPARE(boxes.message(nullptr, u"Text"_s, box::AskOrCancel, {}), Answer::Cancel);
    QVERIFY(stoodThere);
}

void BoxKeysTest::aKeyHeldDownSinceAnswersNothing_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::addColumn<bool>("repeated");
    QTest::newRow("Return") << Qt::Key_Return << true;
    QTest::newRow("Space") << Qt::Key_Space << true;
    QTest::newRow("Escape") << Qt::Key_Escape << true;
    QTest::newRow("Return, not called repeated") << Qt::Key_Return << false;
}

void BoxKeysTest::aKeyHeldDownSinceAnswersNothing()
{
    QFETCH(const Qt::Key, key);
    QFETCH(const bool, repeated);
    QtBoxes boxes;
    bool stoodThere = false;
    whenShown<QMessageBox>(boxes, [&](QMessageBox &box) {
        for (const quint64 time : {7000, 7030, 7060}) {
            sendKey(box, QEvent::KeyRelease, key, repeated, time);
            sendKey(box, QEvent::KeyPress, key, repeated, time);
        }
        sendKey(box, QEvent::KeyRelease, key, false, 7080);
        stoodThere = box.isVisible();
        sendKey(box, QEvent::KeyPress, key, false, 7900); // a new press, which counts
        sendKey(box, QEvent::KeyRelease, key, false, 7950);
        QVERIFY(!box.isVisible());
    });
    const Answer meant = key == Qt::Key_Escape ? Answer::No : Answer::Yes;
    QCOMPARE(boxes.message(nullptr, u"Text"_s, box::Ask, {}), meant);
    QVERIFY(stoodThere);
}

void BoxKeysTest::aHeldAcceleratorAnswersNothing()
{
    QtBoxes boxes;
    whenShown<QMessageBox>(boxes, [](QMessageBox &box) {
        const auto pressAltN = [&box](bool repeated) {
            return qt_sendShortcutOverrideEvent(focusOf(box), 0, Qt::Key_N, Qt::AltModifier, u"n"_s, repeated);
        };
        QTRY_VERIFY(box.isActiveWindow());
        QVERIFY(!pressAltN(true));
        QVERIFY(box.isVisible());
        QVERIFY(pressAltN(false));
        QTRY_VERIFY(!box.isVisible());
    });
    QCOMPARE(boxes.message(nullptr, u"Text"_s, box::Ask, {}), Answer::No);
}

void BoxKeysTest::aBoxShownAgainIsGuardedAgain()
{
    QDialog box;
    new EarlyKeyFilter(box);
    QVERIFY(EarlyKeyFilter::isInstalled(box));
    for (int time = 0; time < 2; ++time) {
        box.show();
        QVERIFY(!EarlyKeyFilter::acceptsKeys(box));
        QTest::keyClick(&box, Qt::Key_Escape);
        QVERIFY(box.isVisible());
        QTRY_VERIFY(EarlyKeyFilter::acceptsKeys(box));
        QTest::keyClick(&box, Qt::Key_Escape);
        QVERIFY(!box.isVisible());
    }
}

void BoxKeysTest::keysBeforeAnInputAreNotTyped()
{
    QtBoxes boxes;
    boxes.setObserver([](QDialog &box) {
        new WhenItComes(box, [&] {
            QTest::keyClicks(focusOf(box), u"42"_s);
            QTest::keyClick(focusOf(box), Qt::Key_Return);
        });
        QTimer::singleShot(0, &box, [&] {
            (void)QTest::qWaitFor([&] { return EarlyKeyFilter::acceptsKeys(box); });
            QTest::keyClicks(focusOf(box), u"99"_s);
            QTest::keyClick(focusOf(box), Qt::Key_Return);
        });
    });
    QCOMPARE(boxes.input(nullptr, u"Price?"_s, {}, u"10"_s), u"99"_s);
}

HARROWBY_TEST(box_keys_test, BoxKeysTest)
#include "box_keys_test.moc"
