// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

namespace harrowby::app {

/// Keeps every dialog of the program from being answered by a key that was pressed before it could be seen. Lives as
/// long as the application.
class BoxGuard final : public QObject
{
    Q_OBJECT

public:
    explicit BoxGuard(QObject *parent = nullptr);

    bool eventFilter(QObject *watched, QEvent *event) override;
};

} // namespace harrowby::app
