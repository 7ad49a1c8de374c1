// SPDX-License-Identifier: MIT
#pragma once

#include <QAccessibleWidget>

class QComboBox;

namespace harrowby {

/// What a screen reader is told of a list to pick from. One that takes typed text is called by its purpose and holds
/// its text in the entry within; another one is called by what is chosen, and its label says what for.
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

} // namespace harrowby
