// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QPoint>
#include <QRect>
#include <QSize>

class QWidget;

namespace harrowby::app {

/// Position of a notice: beside the window where the screen has room, else inside it, nearest to its lower left corner
/// without covering `keepFree`. All in screen coordinates.
[[nodiscard]] QPoint noticePlace(const QSize &notice, const QRect &window, const QRect &screen,
                                 const QList<QRect> &keepFree);

/// Whether the whole notice is on the screen there, and covers nothing of `keepFree`.
[[nodiscard]] bool isClear(const QRect &notice, const QRect &screen, const QList<QRect> &keepFree);

/// The component's window; null while there is none.
[[nodiscard]] QWidget *salesWindow();

/// What of the window must stay in sight and is visible: its totals and the like, in screen coordinates.
[[nodiscard]] QList<QRect> keptInSight(const QWidget &window);

} // namespace harrowby::app
