// SPDX-License-Identifier: MIT
#include "bench/paint_watch.h"

#include "bench/stopwatch.h"

#include <QCoreApplication>
#include <QEvent>

namespace harrowby::bench {

namespace {

constexpr double giveUpAfterMs = 5000.0;

} // namespace

PaintWatch::PaintWatch(std::initializer_list<QWidget *> widgets)
{
    for (QWidget *widget : widgets) {
        widget->installEventFilter(this);
        m_unpainted.insert(widget);
    }
}

bool PaintWatch::wait()
{
    const Stopwatch waited;
    do {
        QCoreApplication::processEvents();
    } while (!m_unpainted.empty() && waited.milliseconds() < giveUpAfterMs);
    return m_unpainted.empty();
}

bool PaintWatch::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Paint)
        m_unpainted.erase(watched);
    return false;
}

} // namespace harrowby::bench
