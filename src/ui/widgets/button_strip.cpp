// SPDX-License-Identifier: MIT
#include "ui/widgets/button_strip.h"

#include "theme/measures.h"
#include "ui/widget_factory.h"

#include <QApplication>
#include <QEvent>
#include <QHBoxLayout>
#include <QScroller>

#include <algorithm>

namespace harrowby {

ButtonStrip::ButtonStrip(QWidget *parent) : QScrollArea(parent)
{
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    setFocusPolicy(Qt::NoFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    auto *page = new QWidget;
    m_row = new QHBoxLayout(page);
    m_row->setContentsMargins(0, 0, 0, 0);
    m_row->setSpacing(controlGap);
    m_row->addStretch(1);
    setWidget(page);
    page->setAutoFillBackground(false);
    viewport()->setAutoFillBackground(false);
    page->installEventFilter(this);
    QScroller::grabGesture(viewport(), QScroller::TouchGesture);
    connect(qApp, &QApplication::focusChanged, this, &ButtonStrip::showFocus);
}

void ButtonStrip::add(QWidget *button)
{
    button->setMinimumHeight(std::max(button->minimumHeight(), touchHeight));
    m_row->addWidget(button);
    button->show();
    m_last = button;
}

QSize ButtonStrip::sizeHint() const
{
    return m_row->sizeHint();
}

QSize ButtonStrip::minimumSizeHint() const
{
    return {2 * touchHeight, m_row->sizeHint().height()};
}

bool ButtonStrip::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::LayoutRequest) {
        updateGeometry();
        Q_EMIT wishChanged();
    }
    return QScrollArea::eventFilter(watched, event);
}

void ButtonStrip::showFocus(const QWidget *, QWidget *now)
{
    if (now && isAncestorOf(now))
        ensureWidgetVisible(now, controlGap, 0);
}

} // namespace harrowby
