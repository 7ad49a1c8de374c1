// SPDX-License-Identifier: MIT
#include "spoken/dialog_reader.h"

#include <QDialog>
#include <QInputDialog>
#include <QMessageBox>

namespace harrowby {

namespace {

QString kindOf(const QMessageBox &box)
{
    switch (box.icon()) {
    case QMessageBox::Question:
        return QObject::tr("Question");
    case QMessageBox::Warning:
        return QObject::tr("Warning");
    case QMessageBox::Critical:
        return QObject::tr("Error");
    default:
        return QObject::tr("Information");
    }
}

} // namespace

DialogReader::DialogReader(QDialog *dialog) : QAccessibleWidget(dialog, QAccessible::Dialog) {}

QAccessible::Role DialogReader::role() const
{
    return qobject_cast<QMessageBox *>(widget()) != nullptr ? QAccessible::AlertMessage : QAccessible::Dialog;
}

QString DialogReader::text(QAccessible::Text kind) const
{
    const QString given = QAccessibleWidget::text(kind);
    if (kind != QAccessible::Name || !given.isEmpty())
        return given;
    if (const auto *box = qobject_cast<QMessageBox *>(widget()))
        return kindOf(*box);
    const auto *input = qobject_cast<QInputDialog *>(widget());
    return input != nullptr ? input->labelText() : given;
}

} // namespace harrowby
