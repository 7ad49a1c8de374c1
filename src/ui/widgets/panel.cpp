// SPDX-License-Identifier: MIT
#include "ui/widgets/panel.h"

#include "theme/colours.h"

#include <QCoreApplication>
#include <QEvent>
#include <QLayout>
#include <QPainter>
#include <QPixmap>
#include <QPixmapCache>

#include <qdrawutil.h>

#include <cmath>
#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby {

namespace {

constexpr int shadowWidth = 14;
constexpr int shadowStep = 5; ///< opacity of each of the rings that make the shadow
constexpr int floatingPadding = 24;
constexpr int cornerRadius = 14;

QRectF cardWithin(const QRectF &panel, int edge)
{
    return panel.adjusted(edge + 0.5, edge + 0.5, -edge - 0.5, -edge - 0.5);
}

void paintRings(QPainter &painter, const QRectF &panel)
{
    const QRectF card = cardWithin(panel, shadowWidth);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0, 0, 0, shadowStep));
    for (int distance = shadowWidth; distance > 0; --distance)
        painter.drawRoundedRect(card.adjusted(-distance, -distance, distance, distance), cornerRadius + distance,
                                cornerRadius + distance);
}

/// The shadow of a card so small that it is nothing but corners, in pixels of the screen.
QPixmap smallShadow(int side, qreal ratio)
{
    const QString key = u"harrowby panel shadow %1"_s.arg(ratio);
    QPixmap shadow;
    if (QPixmapCache::find(key, &shadow))
        return shadow;
    shadow = QPixmap(QSize(side, side) * ratio);
    shadow.fill(Qt::transparent);
    QPainter painter(&shadow);
    painter.scale(ratio, ratio);
    paintRings(painter, QRectF(0, 0, side, side));
    painter.end();
    QPixmapCache::insert(key, shadow);
    return shadow;
}

/// Stretches a small shadow over the panel: rings as large as the panel take longer to fill than the rest of the
/// window to paint. At a broken scale the parts would not meet on whole pixels.
void paintShadow(QPainter &painter, const QRect &panel)
{
    const qreal ratio = painter.device()->devicePixelRatioF();
    if (ratio != std::floor(ratio)) {
        paintRings(painter, panel);
        return;
    }
    constexpr int corner = shadowWidth + cornerRadius + 1;
    const QMargins corners(corner, corner, corner, corner);
    const QPixmap shadow = smallShadow(2 * corner + 1, ratio);
    qDrawBorderPixmap(&painter, panel, corners, shadow, shadow.rect(), corners * ratio);
}

} // namespace

Panel::Panel(Kind kind, QWidget *parent) :
    QFrame(parent), m_kind(kind), m_gutter(measuresOf(Density::Usual).gutter),
    m_padding(measuresOf(Density::Usual).padding)
{
    setAttribute(Qt::WA_OpaquePaintEvent, kind != Kind::Floating); // what is behind it need not be painted with it
}

void Panel::setDensity(Density density)
{
    m_gutter = measuresOf(density).gutter;
    m_padding = measuresOf(density).padding;
    const int free = margin();
    if (layout())
        layout()->setContentsMargins(free, free, free, free);
    update();
}

int Panel::margin() const
{
    switch (m_kind) {
    case Kind::Card:
        return m_gutter + m_padding;
    case Kind::Floating:
        return shadowWidth + floatingPadding;
    case Kind::Plain:
        break;
    }
    return 0;
}

void Panel::dressWhenShown()
{
    for (QWidget *widget : findChildren<QWidget *>()) {
        widget->installEventFilter(this);
        m_undressed.emplace_back(widget);
    }
}

void Panel::setVisible(bool visible)
{
    if (visible)
        dress();
    QFrame::setVisible(visible);
}

/// Qt polishes a widget (applies the style sheet) once, when its window is first shown, also while it is hidden.
bool Panel::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::Polish)
        return QFrame::eventFilter(watched, event);
    m_waiting.emplace_back(static_cast<QWidget *>(watched));
    return true;
}

void Panel::dress()
{
    if (m_undressed.empty())
        return;
    for (const QPointer<QWidget> &widget : std::exchange(m_undressed, {})) {
        if (widget)
            widget->removeEventFilter(this);
    }
    for (const QPointer<QWidget> &widget : std::exchange(m_waiting, {})) {
        QEvent polish(QEvent::Polish);
        if (!widget)
            continue;
        QCoreApplication::sendEvent(widget, &polish);
        widget->updateGeometry();
    }
}

void Panel::paintEvent(QPaintEvent *)
{
    const Colours &colours = Colours::current();
    QPainter painter(this);
    if (m_kind == Kind::Plain) {
        painter.fillRect(rect(), colours.card);
        return;
    }
    painter.setRenderHint(QPainter::Antialiasing);
    const int edge = m_kind == Kind::Card ? m_gutter : shadowWidth;
    const QRectF card = cardWithin(rect(), edge);
    if (m_kind == Kind::Card)
        painter.fillRect(rect(), colours.background);
    else
        paintShadow(painter, rect());
    painter.setPen(m_kind == Kind::Card ? colours.border : colours.accent);
    painter.setBrush(colours.card);
    painter.drawRoundedRect(card, cornerRadius, cornerRadius);
}

} // namespace harrowby
