// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

namespace harrowby {

/// Event filter for buttons: Enter presses the one that has the focus, as the space bar does. Qt leaves that to
/// dialogs. Not for buttons that sell at one press: Enter follows a login, and every code that a reader reads.
class EnterPresses final : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;
    bool eventFilter(QObject *watched, QEvent *event) override;
};

} // namespace harrowby
