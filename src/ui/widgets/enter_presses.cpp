// SPDX-License-Identifier: MIT
#include "ui/widgets/enter_presses.h"

#include <QAbstractButton>
#include <QKeyEvent>

namespace harrowby {

bool EnterPresses::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::KeyPress)
        return false;
    const auto *key = static_cast<QKeyEvent *>(event);
    const bool enter = key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter;
    auto *button = qobject_cast<QAbstractButton *>(watched);
    if (!enter || button == nullptr || !button->isEnabled())
        return false;
    // Auto-repeat is ignored: a key that is held down presses once.
    if (!key->isAutoRepeat())
        button->click();
    return true;
}

} // namespace harrowby
