// SPDX-License-Identifier: MIT
// What keys do in the window beyond their own controls, and where the focus goes.
#include "ui/focus_order.h"
#include "ui/inventory.h"

#include <QKeyEvent>
#include <QPushButton>

namespace harrowby {

bool Inventory::focusNextPrevChild(bool next)
{
    return focusNextUncovered(*this, next);
}

/// Comes here from every control, as none of them knows the key. Not a shortcut of Qt's: those are deaf where no window
/// manager makes the window the active one.
void Inventory::keyPressEvent(QKeyEvent *event)
{
    if (event->key() != Qt::Key_F12 || event->modifiers() != Qt::NoModifier)
        return QMainWindow::keyPressEvent(event);
    // Also where the stock list or the log lies over the button: the question lists the cart.
    if (!event->isAutoRepeat())
        m_controls.Command14->click(); // which heeds whether it is enabled
}

} // namespace harrowby
