// SPDX-License-Identifier: MIT
#pragma once

#include <QAccessibleWidget>

class QDialogButtonBox;

namespace harrowby {

/// A row of buttons hands the focus on to one of them, and is then not focused itself.
class ButtonBoxReader final : public QAccessibleWidget
{
public:
    explicit ButtonBoxReader(QDialogButtonBox *box);
    [[nodiscard]] QAccessible::State state() const override;
};

} // namespace harrowby
