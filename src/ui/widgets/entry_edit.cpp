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

/// Whether the focus came by Tab, an accelerator or setFocus(): not by the mouse, which places the caret, nor because a
/// pop-up or another window has closed.
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

/// Disconnects first: QWidget's destructor clears the focus, and the slot would run on a partly destroyed object.
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

/// The window may get the focus back with another focus widget, and then no event reaches this entry.
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
