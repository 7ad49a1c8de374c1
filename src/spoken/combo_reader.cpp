// SPDX-License-Identifier: MIT
#include "spoken/combo_reader.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QFrame>
#include <QLineEdit>

using namespace Qt::StringLiterals;

namespace harrowby {

namespace {

enum Child { List, Entry };

/// Does not create the popup, as QComboBox::view() would.
bool isDown(const QComboBox &combo)
{
    const auto *list = combo.findChild<QFrame *>({}, Qt::FindDirectChildrenOnly);
    return list != nullptr && list->isVisible();
}

} // namespace

ComboReader::ComboReader(QComboBox *combo) : QAccessibleWidget(combo, QAccessible::ComboBox) {}

QComboBox *ComboReader::combo() const
{
    return static_cast<QComboBox *>(widget());
}

int ComboReader::childCount() const
{
    return combo()->isEditable() ? 2 : 1;
}

QAccessibleInterface *ComboReader::child(int index) const
{
    if (index == List)
        return QAccessible::queryAccessibleInterface(combo()->view());
    return index == Entry ? QAccessible::queryAccessibleInterface(combo()->lineEdit()) : nullptr;
}

int ComboReader::indexOfChild(const QAccessibleInterface *child) const
{
    if (child->object() == combo()->view())
        return List;
    return combo()->isEditable() && child->object() == combo()->lineEdit() ? Entry : -1;
}

QString ComboReader::text(QAccessible::Text kind) const
{
    const QString chosen = combo()->currentText();
    if (kind == QAccessible::Value)
        return chosen;
    const QString purpose = QAccessibleWidget::text(kind);
    if (kind != QAccessible::Name || combo()->isEditable() || chosen.isEmpty())
        return purpose;
    return purpose.isEmpty() || !relations(QAccessible::Label).isEmpty() ? chosen : purpose + u": "_s + chosen;
}

QAccessible::State ComboReader::state() const
{
    QAccessible::State state = QAccessibleWidget::state();
    state.expandable = true;
    state.expanded = isDown(*combo());
    state.collapsed = !state.expanded;
    state.editable = combo()->isEditable();
    return state;
}

QStringList ComboReader::actionNames() const
{
    return QStringList{showMenuAction(), pressAction()} + QAccessibleWidget::actionNames();
}

void ComboReader::doAction(const QString &action)
{
    if (action != showMenuAction() && action != pressAction())
        return QAccessibleWidget::doAction(action);
    if (!combo()->isEnabled())
        return;
    if (isDown(*combo()))
        combo()->hidePopup();
    else
        combo()->showPopup();
}

QComboBox *comboOf(const QAbstractItemView &list)
{
    return list.parent() != nullptr ? qobject_cast<QComboBox *>(list.parent()->parent()) : nullptr;
}

} // namespace harrowby
