// SPDX-License-Identifier: MIT
#include "app/start/window_sizes.h"

#include "basic/logging.h"

#include <QApplication>
#include <QPointer>
#include <QResizeEvent>
#include <QTimer>
#include <QWidget>
#include <QWindow>

namespace harrowby::app {

namespace {

constexpr int settling = 100;   // milliseconds, in which a window manager may still think better of it
constexpr int mostRequests = 3; // one that wants the window so small has its way
constexpr auto requestsProperty = "harrowbySizeRequests";

bool isTooSmall(const QWidget &window, const QSize &size)
{
    const QSize least = window.minimumSize();
    return size.width() < least.width() || size.height() < least.height();
}

} // namespace

WindowSizes::WindowSizes(QObject *parent) : QObject(parent)
{
    qApp->installEventFilter(this);
}

bool WindowSizes::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Resize) {
        auto *window = qobject_cast<QWidget *>(watched);
        const auto *resized = static_cast<const QResizeEvent *>(event);
        if (window != nullptr && window->isWindow() && isTooSmall(*window, resized->size()))
            ask(*window, resized->oldSize());
    }
    return QObject::eventFilter(watched, event);
}

void WindowSizes::ask(QWidget &window, const QSize &before)
{
    const QPointer<QWidget> kept(&window);
    QTimer::singleShot(settling, this, [kept, before] {
        if (!kept || kept->windowHandle() == nullptr || !isTooSmall(*kept, kept->size()))
            return;
        const int requests = kept->property(requestsProperty).toInt();
        if (requests >= mostRequests)
            return;
        kept->setProperty(requestsProperty, requests + 1);
        qCWarning(lcWindow, "A window was told to be %d by %d, which is too small; its size is asked for again",
                  kept->width(), kept->height());
        kept->windowHandle()->resize(before.expandedTo(kept->minimumSize()));
    });
}

} // namespace harrowby::app
