// SPDX-License-Identifier: MIT
#pragma once

#include "app/office/office_user.h"
#include "app/office/wrong_tries.h"
#include "basic/result.h"

#include <QDialog>

#include <functional>

class QLabel;
class QLineEdit;
class QPushButton;

namespace harrowby::app {

/// Whether a typed name and password open the office, or why not, in words for a person.
using LoginCheck = std::function<Result<OfficeUser, QString>(const QString &name, const QString &password)>;

/// Asks who wants into the office until somebody may or gives up. After several wrong tries the next one has to wait a
/// little, also when they were made before the program was started.
class OfficeLoginDialog final : public QDialog
{
    Q_OBJECT

public:
    /// `reason`: why the login is asked for again; empty at the first time.
    explicit OfficeLoginDialog(LoginCheck check, WrongTries wrongTries = WrongTries(), const QString &reason = {},
                               QWidget *parent = nullptr);

    /// Who may go in, once the dialog is accepted.
    [[nodiscard]] const OfficeUser &user() const { return m_user; }

    void accept() override;

private:
    void layOut(const QString &reason);
    void createEntries();
    void refuse(const QString &problem);
    /// True when the next try has to wait.
    bool pause();
    void sayPause();

    LoginCheck m_check;
    WrongTries m_wrongTries;
    OfficeUser m_user;
    QLineEdit *m_name = nullptr;
    QLineEdit *m_password = nullptr;
    QLabel *m_problem = nullptr;
    QPushButton *m_open = nullptr;
};

} // namespace harrowby::app
