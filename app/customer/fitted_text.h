// SPDX-License-Identifier: MIT
#pragma once

#include <QFont>
#include <QRect>
#include <QString>

class QFontMetrics;
class QPainter;

/// Texts that have to be read from afar, in as much room as there is.
namespace harrowby::app {

/// The font, `wanted` pixels high or less, so that the text fits the room on one line; never below `least`.
[[nodiscard]] QFont fittedFont(const QFont &font, const QString &text, const QSize &room, int wanted, int least);

/// The text, or as much of it as fits the width and an ellipsis.
[[nodiscard]] QString shownText(const QFontMetrics &metrics, const QString &text, int width);

/// On one line, with an ellipsis where it does not fit. The text runs in its own direction; `alignment` says where it
/// stands, left and right as on the screen.
void drawLine(QPainter &painter, const QRect &room, Qt::Alignment alignment, const QString &text);

/// On as many lines as there is room for, the last one with an ellipsis where more follows.
void drawWrapped(QPainter &painter, const QRect &room, Qt::Alignment alignment, const QString &text);

} // namespace harrowby::app
