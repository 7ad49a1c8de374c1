// SPDX-License-Identifier: MIT
#include "ui/widgets/upper_case_typing.h"

#include <QComboBox>
#include <QCoreApplication>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QLineEdit>

namespace harrowby {

namespace {

bool typeInUpperCase(QObject *field, const QKeyEvent &key)
{
    const QString upper = key.text().toUpper();
    if (upper == key.text())
        return false;
    QKeyEvent replaced(key.type(), key.key(), key.modifiers(), upper, key.isAutoRepeat(),
                       static_cast<quint16>(key.count()));
    QCoreApplication::sendEvent(field, &replaced);
    return true;
}

bool commitInUpperCase(QObject *field, const QInputMethodEvent &input)
{
    const QString upper = input.commitString().toUpper();
    if (upper == input.commitString())
        return false;
    QInputMethodEvent replaced(input.preeditString(), input.attributes());
    replaced.setCommitString(upper, input.replacementStart(), input.replacementLength());
    QCoreApplication::sendEvent(field, &replaced);
    return true;
}

} // namespace

UpperCaseTyping::UpperCaseTyping(QWidget *field) : QObject(field)
{
    field->installEventFilter(this);
    if (const auto *list = qobject_cast<QComboBox *>(field); list != nullptr && list->lineEdit() != nullptr)
        list->lineEdit()->installEventFilter(this);
}

bool UpperCaseTyping::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::KeyPress)
        return typeInUpperCase(watched, *static_cast<QKeyEvent *>(event));
    if (event->type() == QEvent::InputMethod)
        return commitInUpperCase(watched, *static_cast<QInputMethodEvent *>(event));
    return false;
}

} // namespace harrowby
