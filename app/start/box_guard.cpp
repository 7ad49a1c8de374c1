// SPDX-License-Identifier: MIT
#include "app/start/box_guard.h"

#include "input/early_keys.h"

#include <QCoreApplication>
#include <QDialog>
#include <QEvent>

namespace harrowby::app {

BoxGuard::BoxGuard(QObject *parent) : QObject(parent)
{
    QCoreApplication::instance()->installEventFilter(this);
}

bool BoxGuard::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Show) {
        if (auto *dialog = qobject_cast<QDialog *>(watched); dialog != nullptr && !EarlyKeys::guard(*dialog))
            new EarlyKeys(*dialog);
    }
    return QObject::eventFilter(watched, event);
}

} // namespace harrowby::app
