// SPDX-License-Identifier: MIT
#include "ui/widgets/form_panel.h"

#include <QApplication>
#include <QBoxLayout>
#include <QEvent>
#include <QScrollArea>
#include <QScrollBar>
#include <QScroller>

#include <algorithm>

namespace harrowby {

namespace {

constexpr int marginAround = 24; ///< what is shown around a control that comes into view, its caption among it
constexpr int shownOfNext = 36;  ///< what is seen of that which is below the part in view

QScrollArea *makeScroller(QWidget *parent)
{
    auto *area = new QScrollArea(parent);
    area->setFrameShape(QFrame::NoFrame);
    area->setWidgetResizable(true);
    area->setFocusPolicy(Qt::NoFocus);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    area->viewport()->setAutoFillBackground(false);
    QScroller::grabGesture(area->viewport(), QScroller::TouchGesture);
    return area;
}

} // namespace

FormPanel::FormPanel(QWidget *parent) : Panel(Kind::Card, parent), m_page(new QWidget(this))
{
    auto *column = new QVBoxLayout(this);
    const int free = margin();
    column->setContentsMargins(free, free, free, free);
    column->addWidget(m_page);
}

void FormPanel::makeScrollable()
{
    m_mayScroll = true;
    if (m_wasShown)
        addScroller();
}

void FormPanel::setVisible(bool visible)
{
    if (visible && m_mayScroll)
        addScroller();
    m_wasShown |= visible;
    Panel::setVisible(visible);
}

/// Not before the first show: the scroll area asks the page for its size hint, which would polish its controls.
void FormPanel::addScroller()
{
    if (m_scroller)
        return;
    m_scroller = makeScroller(this);
    layout()->removeWidget(m_page);
    layout()->addWidget(m_scroller);
    m_scroller->setWidget(m_page);
    m_page->setAutoFillBackground(false); // the card is painted by the panel
    if (isVisible()) {
        m_scroller->show();
        m_page->show();
    }
    m_scroller->viewport()->installEventFilter(this);
    m_page->installEventFilter(this);
    connect(qApp, &QApplication::focusChanged, this, &FormPanel::showFocus);
    connect(m_scroller->verticalScrollBar(), &QScrollBar::rangeChanged, this, &FormPanel::fitPage);
    fitPage();
}

void FormPanel::keepInView(QWidget *part, int comfortable)
{
    m_part = part;
    m_comfortable = comfortable;
    fitPage();
}

bool FormPanel::eventFilter(QObject *watched, QEvent *event)
{
    const bool resized = m_scroller && watched == m_scroller->viewport() && event->type() == QEvent::Resize;
    if (resized || (watched == m_page && event->type() == QEvent::LayoutRequest))
        fitPage();
    return Panel::eventFilter(watched, event);
}

void FormPanel::showFocus(const QWidget *, QWidget *now)
{
    if (!now || !isVisible() || !m_page->isAncestorOf(now))
        return;
    // The whole control: QScrollArea only makes the text cursor of an entry visible.
    const QRect place(now->mapTo(m_page, QPoint()), now->size());
    m_scroller->ensureVisible(place.center().x(), place.center().y(), 0, place.height() / 2 + marginAround);
}

void FormPanel::fitPage()
{
    if (!m_scroller)
        return;
    const QScrollBar *bar = m_scroller->verticalScrollBar();
    const int barWidth = bar->maximum() > 0 ? bar->sizeHint().width() : 0;
    m_scroller->setMinimumWidth(m_page->minimumSizeHint().width() + barWidth);
    if (m_part)
        stretchPart();
}

/// Gives the part all that is seen without scrolling, but for the beginning of what is below it; nothing when the
/// whole page is seen.
void FormPanel::stretchPart()
{
    const int natural = m_part->minimumSizeHint().height();
    const int below = m_page->minimumSizeHint().height() - std::max(natural, m_part->minimumHeight());
    const int room = m_scroller->viewport()->height();
    const bool isWhole = room >= below + std::max(natural, m_comfortable);
    const int height = std::max(natural, room - shownOfNext);
    // Not higher either: what a page would like to have counts where texts of it wrap.
    m_part->setMinimumHeight(isWhole ? 0 : height);
    m_part->setMaximumHeight(isWhole ? QWIDGETSIZE_MAX : height);
}

} // namespace harrowby
