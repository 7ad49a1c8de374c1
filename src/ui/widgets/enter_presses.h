// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

namespace harrowby {

/// Event filter for buttons: Enter presses the one that has the focus, as the space bar does. Qt does that in
/// dialogs only. Not for buttons that sell at one press: Enter may end a login or a scanned code.
class EnterPresses final : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;
    bool eventFilter(QObject *watched, QEvent *event) override;
};

} // namespace harrowby
