// SPDX-License-Identifier: MIT
#pragma once

#include <QAccessibleWidget>

class QAbstractItemView;
class QComboBox;

namespace harrowby {

/// Accessible interface of a QComboBox. An editable one is named by its purpose, and its text is its line edit's;
/// another one is named by its current entry and described by its label.
class ComboReader final : public QAccessibleWidget
{
public:
    explicit ComboReader(QComboBox *combo);

    [[nodiscard]] int childCount() const override;
    [[nodiscard]] QAccessibleInterface *child(int index) const override;
    [[nodiscard]] int indexOfChild(const QAccessibleInterface *child) const override;
    [[nodiscard]] QString text(QAccessible::Text kind) const override;
    [[nodiscard]] QAccessible::State state() const override;
    [[nodiscard]] QStringList actionNames() const override;
    void doAction(const QString &action) override;

private:
    [[nodiscard]] QComboBox *combo() const;
};

/// The combo box whose popup the list is; null when it is none's.
[[nodiscard]] QComboBox *comboOf(const QAbstractItemView &list);

} // namespace harrowby
