// SPDX-License-Identifier: MIT
#pragma once

#include <QAccessibleWidget>

class QDialog;

namespace harrowby {

/// A box without a title is called by what it is, or by what it asks for.
class DialogReader final : public QAccessibleWidget
{
public:
    explicit DialogReader(QDialog *dialog);
    [[nodiscard]] QAccessible::Role role() const override;
    [[nodiscard]] QString text(QAccessible::Text kind) const override;
};

} // namespace harrowby
