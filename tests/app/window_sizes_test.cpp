// SPDX-License-Identifier: MIT
#include "app/start/window_sizes.h"
#include "tests/program/test_program.h"

#include <QDialog>
#include <QLabel>
#include <QTest>
#include <QVBoxLayout>
#include <QWindow>

using namespace Qt::StringLiterals;
using namespace harrowby::app;

namespace {

/// A box whose least size is that of its text.
struct Box
{
    Box()
    {
        auto *rows = new QVBoxLayout(&dialog);
        rows->addWidget(new QLabel(u"A new store is created in"_s, &dialog));
        dialog.show();
    }

    QDialog dialog;
};

/// Counts how often the window was made small and large, and may insist on the small size.
class Manager : public QObject
{
public:
    explicit Manager(bool insists) : m_insists(insists) {}

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        auto *window = qobject_cast<QWidget *>(watched);
        if (event->type() != QEvent::Resize || window == nullptr)
            return false;
        ++(window->width() == 1 ? small : large);
        if (m_insists && window->width() > 1)
            QMetaObject::invokeMethod(
                window, [window] { window->windowHandle()->resize(1, 1); }, Qt::QueuedConnection);
        return false;
    }

    int small = 0;
    int large = 0;

private:
    bool m_insists;
};

} // namespace

class WindowSizesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tooSmallOneIsAskedForAgain();
    void oneThatInsistsHasItsWay();
};

void WindowSizesTest::tooSmallOneIsAskedForAgain()
{
    const WindowSizes sizes;
    Box box;
    QVERIFY(QTest::qWaitForWindowExposed(&box.dialog));
    const QSize before = box.dialog.size();
    Manager manager(false);
    box.dialog.installEventFilter(&manager);
    box.dialog.windowHandle()->resize(1, 1); // past the dialog, as the window system does
    QTRY_COMPARE(manager.large, 1);
    QCOMPARE(manager.small, 1);
    QCOMPARE(box.dialog.size(), before);
}

void WindowSizesTest::oneThatInsistsHasItsWay()
{
    const WindowSizes sizes;
    Box box;
    QVERIFY(QTest::qWaitForWindowExposed(&box.dialog));
    Manager manager(true);
    box.dialog.installEventFilter(&manager);
    box.dialog.windowHandle()->resize(1, 1);
    QTRY_COMPARE(manager.small, 4);
    QTest::qWait(300); // longer than a further request would take
    QCOMPARE(manager.large, 3);
}

HARROWBY_TEST(app_window_sizes_test, WindowSizesTest)
#include "window_sizes_test.moc"
