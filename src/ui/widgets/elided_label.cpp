// SPDX-License-Identifier: MIT
#include "ui/widgets/elided_label.h"

#include "theme/colours.h"
#include "ui/widgets/plain_tool_tip.h"

#include <QFontMetrics>
#include <QHelpEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleOption>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace harrowby {

namespace {

// Sizes of a total's parts, as shares of the label's font.
constexpr double captionSize = 0.45;
constexpr double smallestAmount = 0.60;

/// A label shows one line, without the blanks around it; line breaks in the data count as blanks.
QString oneLine(const QString &text)
{
    return text.contains(u'\n') ? text.simplified() : text.trimmed();
}

/// The largest font, up to this one, in which the text has room; not below the smallest that a total may have.
QFont fittingFont(QFont font, const QString &text, int room)
{
    const double smallest = font.pointSizeF() * smallestAmount;
    while (font.pointSizeF() > smallest && QFontMetricsF(font).horizontalAdvance(text) > room)
        font.setPointSizeF(font.pointSizeF() - 0.5);
    return font;
}

void paintGround(QWidget &widget, QPainter &painter)
{
    QStyleOption option;
    option.initFrom(&widget);
    widget.style()->drawPrimitive(QStyle::PE_Widget, &option, &painter, &widget);
}

} // namespace

ElidedLabel::ElidedLabel(QWidget *parent) : QLabel(parent)
{
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

QSize ElidedLabel::minimumSizeHint() const
{
    return {fontMetrics().averageCharWidth() * 4, QLabel::minimumSizeHint().height()};
}

bool ElidedLabel::event(QEvent *event)
{
    if (event->type() == QEvent::ToolTip) {
        showPlainToolTip(static_cast<QHelpEvent *>(event)->globalPos(), toolTip(), this);
        return true;
    }
    return QLabel::event(event);
}

void ElidedLabel::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    paintGround(*this, painter);
    const QRect area = textArea();
    painter.setPen(textColour());
    painter.drawText(area, static_cast<int>(alignment()) | Qt::TextSingleLine,
                     fontMetrics().elidedText(oneLine(text()), Qt::ElideRight, area.width()));
    if (const QString whole = isTooLong() ? text() : QString(); toolTip() != whole)
        setToolTip(whole);
}

QRect ElidedLabel::textArea() const
{
    return contentsRect();
}

QColor ElidedLabel::textColour() const
{
    return palette().color(foregroundRole());
}

bool ElidedLabel::isTooLong() const
{
    return fontMetrics().horizontalAdvance(oneLine(text())) > textArea().width();
}

QSize TotalLabel::sizeHint() const
{
    return {200, fontMetrics().height()};
}

void TotalLabel::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const auto colon = text().indexOf(u':') + 1;
    const QString caption = text().left(colon);
    const QString amount = oneLine(text().mid(colon));

    QFont small = font();
    small.setPointSizeF(font().pointSizeF() * captionSize);
    const int captionWidth = QFontMetrics(small).horizontalAdvance(caption + u' ');
    const QRect area = contentsRect();
    const int room = area.width() - captionWidth;
    const QFont large = fittingFont(font(), amount, room);

    const QFontMetrics metrics(large);
    const int baseline = area.top() + (area.height() - metrics.height()) / 2 + metrics.ascent();
    const QString shown = metrics.elidedText(amount, Qt::ElideRight, room);
    painter.setPen(Colours::current().text);
    painter.setFont(small);
    painter.drawText(area.left(), baseline, caption);
    painter.setPen(Colours::current().price);
    painter.setFont(large);
    painter.drawText(area.right() + 1 - metrics.horizontalAdvance(shown), baseline, shown);
    if (const QString whole = shown == amount ? QString() : text(); toolTip() != whole)
        setToolTip(whole);
}

void LevelLabel::setLow(bool low)
{
    m_low = low;
    update();
}

void LevelLabel::paintEvent(QPaintEvent *event)
{
    const Colours &colours = Colours::current();
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(colours.fieldBorder);
        painter.setBrush(m_low ? colours.lowLevel : colours.level);
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 8, 8);
        painter.setPen(textColour());
        if (m_low)
            painter.drawText(rect().adjusted(10, 0, -10, 0), Qt::AlignLeft | Qt::AlignVCenter, u"\u25BC"_s);
    }
    ElidedLabel::paintEvent(event);
}

QRect LevelLabel::textArea() const
{
    return rect().adjusted(m_low ? 30 : 10, 0, -10, 0);
}

QColor LevelLabel::textColour() const
{
    return m_low ? Colours::current().onLowLevel : Colours::current().onLevel;
}

} // namespace harrowby
