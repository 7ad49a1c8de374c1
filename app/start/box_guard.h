// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

namespace harrowby::app {

/// Installs EarlyKeys in every dialog of the program. Lives as long as the application.
class BoxGuard final : public QObject
{
    Q_OBJECT

public:
    explicit BoxGuard(QObject *parent = nullptr);

    bool eventFilter(QObject *watched, QEvent *event) override;
};

} // namespace harrowby::app
