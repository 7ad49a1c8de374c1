// SPDX-License-Identifier: MIT
#pragma once

#include <QAccessibleWidget>

class QDialog;

namespace harrowby {

/// Accessible interface of a QDialog: one without a title is named by its kind or its prompt.
class DialogReader final : public QAccessibleWidget
{
public:
    explicit DialogReader(QDialog *dialog);
    [[nodiscard]] QAccessible::Role role() const override;
    [[nodiscard]] QString text(QAccessible::Text kind) const override;
};

} // namespace harrowby
