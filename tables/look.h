// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QPalette>

class QFormLayout;
class QPushButton;
class QWidget;

namespace harrowby::tables {

/// The colours of the till, made from the palette.
struct Look
{
    explicit Look(const QPalette &palette);

    bool dark = false;
    QColor accent;
    QColor onAccent;
    QColor accentPressed;
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

/// The one main button of a form. Before it is shown.
void makePrimary(QPushButton &button);

/// Puts the captions of a form into the middle of their entries. A form's own layout would have them above it.
/// Once the rows are in, and before they are shown.
void centreCaptions(QFormLayout &form);

} // namespace harrowby::tables
