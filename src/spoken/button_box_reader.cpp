// SPDX-License-Identifier: MIT
#include "spoken/button_box_reader.h"

#include <QApplication>
#include <QDialogButtonBox>

namespace harrowby {

ButtonBoxReader::ButtonBoxReader(QDialogButtonBox *box) : QAccessibleWidget(box, QAccessible::Grouping) {}

QAccessible::State ButtonBoxReader::state() const
{
    QAccessible::State state = QAccessibleWidget::state();
    state.focused = QApplication::focusWidget() == widget();
    return state;
}

} // namespace harrowby
