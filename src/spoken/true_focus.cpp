// SPDX-License-Identifier: MIT
#include "spoken/true_focus.h"

#include <QAccessible>
#include <QWidget>

namespace harrowby {

namespace {

int alive = 0;
QAccessible::UpdateHandler before = nullptr;

bool tellsNoFocus(const QAccessibleEvent &event)
{
    const auto *widget = qobject_cast<QWidget *>(event.object());
    return event.type() == QAccessible::Focus && widget != nullptr && !widget->hasFocus();
}

void passOn(QAccessibleEvent *event)
{
    if (tellsNoFocus(*event))
        return;
    if (before != nullptr)
        return before(event);
    if (event->type() == QAccessible::TableModelChanged)
        return; // the list has heard of it before anybody, and would hear of it again
    QAccessible::installUpdateHandler(nullptr);
    QAccessible::updateAccessibility(event);
    QAccessible::installUpdateHandler(passOn);
}

} // namespace

TrueFocus::TrueFocus()
{
    if (alive++ == 0)
        before = QAccessible::installUpdateHandler(passOn);
}

TrueFocus::~TrueFocus()
{
    if (--alive == 0)
        QAccessible::installUpdateHandler(before);
}

} // namespace harrowby
