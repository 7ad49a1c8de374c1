// SPDX-License-Identifier: MIT
#include "app/start/early_key_installer.h"

#include "input/early_key_filter.h"

#include <QCoreApplication>
#include <QDialog>
#include <QEvent>

namespace harrowby::app {

EarlyKeyInstaller::EarlyKeyInstaller(QObject *parent) : QObject(parent)
{
    QCoreApplication::instance()->installEventFilter(this);
}

bool EarlyKeyInstaller::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Show) {
        if (auto *dialog = qobject_cast<QDialog *>(watched); dialog != nullptr && !EarlyKeyFilter::isInstalled(*dialog))
            new EarlyKeyFilter(*dialog);
    }
    return QObject::eventFilter(watched, event);
}

} // namespace harrowby::app
