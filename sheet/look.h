// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QPalette>

class QWidget;

namespace harrowby::sheet {

/// The colours of the till, made from the palette.
struct Look
{
    explicit Look(const QPalette &palette);

    bool dark = false;
    QColor accent;
    QColor onAccent;
    QColor ground;
    QColor field;
    QColor tile;
    QColor text;
    QColor muted;
    QColor border;
    QColor edge; ///< of what can be pressed or typed into
    QColor selection;
};

/// Dresses a window like the till: everything that is touched is at least 44 px high. Follows the application's
/// palette.
void dress(QWidget &window);

} // namespace harrowby::sheet
