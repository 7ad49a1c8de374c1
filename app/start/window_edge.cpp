// SPDX-License-Identifier: MIT
#include "app/start/window_edge.h"

#include "theme/colours.h"

#include <QEvent>
#include <QPainter>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr int thickness = 2;

} // namespace

WindowEdge::WindowEdge(QWidget &window) : QWidget(&window)
{
    setObjectName(u"windowEdge"_s);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFocusPolicy(Qt::NoFocus);
    window.installEventFilter(this);
    follow();
    show();
}

bool WindowEdge::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Resize || event->type() == QEvent::ChildAdded)
        follow();
    return QWidget::eventFilter(watched, event);
}

void WindowEdge::follow()
{
    setGeometry(parentWidget()->rect());
    const QRect inside = rect().adjusted(thickness, thickness, -thickness, -thickness);
    setMask(QRegion(rect()).subtracted(inside));
    raise();
}

void WindowEdge::paintEvent(QPaintEvent *)
{
    QPainter(this).fillRect(rect(), Colours::current().accent);
}

} // namespace harrowby::app
