// SPDX-License-Identifier: MIT
#include "ui/widgets/tab_strip.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPointer>
#include <QWheelEvent>

namespace harrowby {

TabStrip::TabStrip(QWidget *parent) : QTabBar(parent)
{
    setUsesScrollButtons(false);
    setElideMode(Qt::ElideNone);
    setDrawBase(false);
    setFocusPolicy(Qt::StrongFocus);
    connect(this, &QTabBar::currentChanged, this, &TabStrip::currentTabChanged);
}

void TabStrip::selectTab(int number)
{
    const int index = number - 1;
    if (index < 0 || index >= count())
        return;
    showTab(index);
    Q_EMIT tabClicked(number);
}

void TabStrip::keyPressEvent(QKeyEvent *event)
{
    if (const int index = tabOfKey(event->key()); index >= 0)
        choose(index);
    else
        QTabBar::keyPressEvent(event);
}

/// The tab that a key stands for by itself; -1 when it is none of these keys.
int TabStrip::tabOfKey(int key) const
{
    switch (key) {
    case Qt::Key_Space:
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return currentIndex();
    case Qt::Key_Left:
    case Qt::Key_Right:
        return neighbour((key == Qt::Key_Right) == isLeftToRight());
    case Qt::Key_Home:
        return 0;
    case Qt::Key_End:
        return count() - 1;
    default:
        return key > Qt::Key_0 && key <= Qt::Key_0 + count() ? key - Qt::Key_1 : -1;
    }
}

/// The next tab that can be chosen, in one direction; -1 when there is none.
int TabStrip::neighbour(bool next) const
{
    const int step = next ? 1 : -1;
    int index = currentIndex() + step;
    while (index >= 0 && index < count() && !(isTabEnabled(index) && isTabVisible(index)))
        index += step;
    return index >= 0 && index < count() ? index : -1;
}

void TabStrip::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        choose(tabAt(event->position().toPoint()));
}

void TabStrip::tabInserted(int index)
{
    QTabBar::tabInserted(index);
    m_accepted = currentIndex();
}

/// The wheel changes no tab: changing it by accident would drop unfinished input.
void TabStrip::wheelEvent(QWheelEvent *event)
{
    event->ignore();
}

/// The user chose a tab. The question may open a box, behind which the window may go away.
void TabStrip::choose(int index)
{
    if (index < 0 || !isTabEnabled(index))
        return;
    const QPointer<TabStrip> alive(this);
    if (beforeClick && !beforeClick())
        return;
    if (!alive)
        return;
    showTab(index);
    Q_EMIT tabClicked(index + 1);
}

void TabStrip::showTab(int index)
{
    m_accepted = index;
    setCurrentIndex(index);
}

/// Every way of the base class to another tab comes through here: the change is taken back and becomes a choice of the
/// user.
void TabStrip::currentTabChanged(int index)
{
    if (index == m_accepted || m_accepted < 0)
        return;
    setCurrentIndex(m_accepted);
    choose(index);
}

} // namespace harrowby
