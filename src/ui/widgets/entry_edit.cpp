// SPDX-License-Identifier: MIT
#include "ui/widgets/entry_edit.h"

#include "ui/style/colours.h"
#include "ui/widgets/plain_tool_tip.h"

#include <QHelpEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionFrame>

using namespace Qt::StringLiterals;

namespace harrowby {

EntryEdit::EntryEdit(QWidget *parent) : QLineEdit(parent)
{
    connect(this, &QLineEdit::textChanged, this, &EntryEdit::showStart);
}

bool EntryEdit::isTooLong() const
{
    return echoMode() == Normal && fontMetrics().horizontalAdvance(text()) > contentsRect().width() - 4;
}

bool EntryEdit::event(QEvent *event)
{
    if (event->type() == QEvent::ToolTip) {
        const QString whole = isTooLong() ? text() : toolTip();
        showPlainToolTip(static_cast<QHelpEvent *>(event)->globalPos(), whole, this);
        return true;
    }
    if (event->type() == QEvent::FocusOut)
        setCursorPosition(0);
    return QLineEdit::event(event);
}

void EntryEdit::paintEvent(QPaintEvent *event)
{
    QLineEdit::paintEvent(event);
    if (hasFocus() || !isTooLong())
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
    if (!hasFocus())
        setCursorPosition(0);
}

} // namespace harrowby
