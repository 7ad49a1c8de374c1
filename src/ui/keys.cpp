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

/// Reached from every control, as none handles the key. Not a QShortcut: without a window manager the window is never
/// active, and shortcuts do not fire.
void Inventory::keyPressEvent(QKeyEvent *event)
{
    if (event->key() != Qt::Key_F12 || event->modifiers() != Qt::NoModifier)
        return QMainWindow::keyPressEvent(event);
    // Also when the stock list or the log covers the button: the question lists the cart.
    if (!event->isAutoRepeat())
        m_controls.Command14->click(); // does nothing while it is disabled
}

} // namespace harrowby
