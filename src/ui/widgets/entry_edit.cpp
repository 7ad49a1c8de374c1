// SPDX-License-Identifier: MIT
#include "ui/widgets/entry_edit.h"

#include "theme/colours.h"
#include "ui/widgets/plain_tool_tip.h"

#include <QApplication>
#include <QFocusEvent>
#include <QHelpEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionFrame>

using namespace Qt::StringLiterals;

namespace harrowby {

namespace {

/// By Tab, by an accelerator or from code; not by a press, which puts the caret where it hits, nor by the going of
/// what stood in front.
bool comesForANewText(Qt::FocusReason reason)
{
    return reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason || reason == Qt::ShortcutFocusReason ||
           reason == Qt::OtherFocusReason;
}

} // namespace

EntryEdit::EntryEdit(QWidget *parent) : QLineEdit(parent)
{
    connect(this, &QLineEdit::textChanged, this, &EntryEdit::showStart);
}

/// The focus leaves a widget that goes away when little is left of it.
EntryEdit::~EntryEdit()
{
    disconnect(m_waiting);
}

bool EntryEdit::isTooLong() const
{
    return echoMode() == Normal && fontMetrics().horizontalAdvance(text()) > contentsRect().width() - 4;
}

bool EntryEdit::isEdited() const
{
    const QWidget *focus = window()->focusWidget();
    return focus != nullptr && (focus == this || focus == focusProxy());
}

bool EntryEdit::event(QEvent *event)
{
    if (event->type() == QEvent::ToolTip) {
        const QString whole = isTooLong() ? text() : toolTip();
        showPlainToolTip(static_cast<QHelpEvent *>(event)->globalPos(), whole, this);
        return true;
    }
    const bool known = QLineEdit::event(event);
    if (event->type() == QEvent::FocusOut)
        isEdited() ? waitBehindAnother() : rest();
    else if (event->type() == QEvent::FocusIn && comesForANewText(static_cast<QFocusEvent *>(event)->reason()))
        selectAll();
    return known;
}

void EntryEdit::rest()
{
    deselect();
    setCursorPosition(0);
}

/// The focus may be somewhere else when it comes back to the window, and then this entry hears of it no more.
void EntryEdit::waitBehindAnother()
{
    disconnect(m_waiting);
    m_waiting = connect(qApp, &QApplication::focusChanged, this, [this] {
        if (isEdited() && !hasFocus())
            return;
        disconnect(m_waiting);
        if (!isEdited())
            rest();
    });
}

void EntryEdit::paintEvent(QPaintEvent *event)
{
    QLineEdit::paintEvent(event);
    if (isEdited() || !isTooLong())
        return;
    QStyleOptionFrame option;
    initStyleOption(&option);
    const QRect area = style()->subElementRect(QStyle::SE_LineEditContents, &option, this);
    const QString ellipsis = u"\u2026"_s;
    const int width = fontMetrics().horizontalAdvance(ellipsis) + 2;
    const QRect end(area.right() + 1 - width, area.top(), width, area.height());
    const Colours &colours = Colours::current();
    QPainter painter(this);
    painter.fillRect(end, isEnabled() ? colours.field : colours.tile);
    painter.setPen(isEnabled() ? colours.text : colours.muted);
    painter.drawText(end, Qt::AlignRight | Qt::AlignVCenter, ellipsis);
}

void EntryEdit::showStart()
{
    if (!isEdited())
        setCursorPosition(0);
}

} // namespace harrowby
