// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

namespace harrowby::app {

/// Installs an EarlyKeyFilter in every dialog of the program that has none. Lives as long as the application.
class EarlyKeyInstaller final : public QObject
{
    Q_OBJECT

public:
    explicit EarlyKeyInstaller(QObject *parent = nullptr);

    bool eventFilter(QObject *watched, QEvent *event) override;
};

} // namespace harrowby::app
