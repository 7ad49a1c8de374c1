// SPDX-License-Identifier: MIT
#include "ui/widgets/panel.h"

#include "ui/style/colours.h"

#include <QPainter>

namespace harrowby {

namespace {

constexpr int kGutter = 6;
constexpr int kShadow = 14;
constexpr int kShadowStep = 5; ///< opacity of each of the rings that make the shadow
constexpr int kPadding = 12;
constexpr int kRadius = 14;

void paintShadow(QPainter &painter, const QRectF &card)
{
    painter.setPen(Qt::NoPen);
    for (int distance = kShadow; distance > 0; --distance) {
        painter.setBrush(QColor(0, 0, 0, kShadowStep));
        painter.drawRoundedRect(card.adjusted(-distance, -distance, distance, distance), kRadius + distance,
                                kRadius + distance);
    }
}

} // namespace

Panel::Panel(Look look, QWidget *parent) : QFrame(parent), m_look(look) {}

int Panel::margin() const
{
    switch (m_look) {
    case Look::Card:
        return kGutter + kPadding;
    case Look::Floating:
        return kShadow + 2 * kPadding;
    case Look::Plain:
        break;
    }
    return 0;
}

void Panel::paintEvent(QPaintEvent *)
{
    const Colours &colours = Colours::current();
    QPainter painter(this);
    if (m_look == Look::Plain) {
        painter.fillRect(rect(), colours.card);
        return;
    }
    painter.setRenderHint(QPainter::Antialiasing);
    const int edge = m_look == Look::Card ? kGutter : kShadow;
    const QRectF card = QRectF(rect()).adjusted(edge + 0.5, edge + 0.5, -edge - 0.5, -edge - 0.5);
    if (m_look == Look::Card)
        painter.fillRect(rect(), colours.background);
    else
        paintShadow(painter, card);
    painter.setPen(m_look == Look::Card ? colours.border : colours.accent);
    painter.setBrush(colours.card);
    painter.drawRoundedRect(card, kRadius, kRadius);
}

} // namespace harrowby
