// SPDX-License-Identifier: MIT
#pragma once

#include <QAccessibleWidget>

class QDialogButtonBox;

namespace harrowby {

/// Accessible interface of a QDialogButtonBox: it passes its focus to a button and is not reported as focused.
class ButtonBoxReader final : public QAccessibleWidget
{
public:
    explicit ButtonBoxReader(QDialogButtonBox *box);
    [[nodiscard]] QAccessible::State state() const override;
};

} // namespace harrowby
