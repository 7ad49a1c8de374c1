// SPDX-License-Identifier: MIT
#pragma once

#include <QDialog>

#include <functional>

class QLabel;
class QLineEdit;
class QPushButton;

namespace harrowby::app {

/// Why a typed password does not open the office, in words for a person; empty when it does.
using PasswordCheck = std::function<QString(const QString &password)>;

/// Asks for ADMINISTRATOR's password until it is right or the person gives up. After several wrong tries the next one
/// has to wait a little.
class OfficePasswordDialog final : public QDialog
{
    Q_OBJECT

public:
    explicit OfficePasswordDialog(PasswordCheck check, QWidget *parent = nullptr);

    void accept() override;

private:
    void layOut();
    void refuse(const QString &problem);
    void pause();

    PasswordCheck m_check;
    int m_wrongTries = 0;
    QLineEdit *m_password = nullptr;
    QLabel *m_problem = nullptr;
    QPushButton *m_open = nullptr;
};

} // namespace harrowby::app
