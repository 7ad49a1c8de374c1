// SPDX-License-Identifier: MIT
#pragma once

#include "app/office/wrong_tries.h"
#include "basic/result.h"

#include <QDialog>

#include <functional>

class QLabel;
class QLineEdit;
class QPushButton;

namespace harrowby::app {

/// Whether a typed password opens the office, or why not, in words for a person.
using PasswordCheck = std::function<Result<void, QString>(const QString &password)>;

/// Asks for ADMINISTRATOR's password until it is right or the person gives up. After several wrong tries the next one
/// has to wait a little, also when they were made before the program was started.
class OfficePasswordDialog final : public QDialog
{
    Q_OBJECT

public:
    explicit OfficePasswordDialog(PasswordCheck check, WrongTries wrongTries = WrongTries(), QWidget *parent = nullptr);

    void accept() override;

private:
    void layOut();
    void refuse(const QString &problem);
    /// True when the next try has to wait.
    bool pause();
    void sayPause();

    PasswordCheck m_check;
    WrongTries m_wrongTries;
    QLineEdit *m_password = nullptr;
    QLabel *m_problem = nullptr;
    QPushButton *m_open = nullptr;
};

} // namespace harrowby::app
