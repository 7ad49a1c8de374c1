// SPDX-License-Identifier: MIT
#include "spoken/dialog_reader.h"

#include <QDialog>
#include <QInputDialog>
#include <QMessageBox>

using namespace Qt::StringLiterals;

namespace harrowby {

namespace {

QString kindOf(const QMessageBox &box)
{
    switch (box.icon()) {
    case QMessageBox::Question:
        return u"Question"_s;
    case QMessageBox::Warning:
        return u"Warning"_s;
    case QMessageBox::Critical:
        return u"Error"_s;
    default:
        return u"Information"_s;
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
