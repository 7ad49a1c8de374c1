// SPDX-License-Identifier: MIT
#pragma once

#include "app/office/users_table.h"

#include <QDialog>

#include <functional>

class QComboBox;
class QFormLayout;
class QLabel;
class QLineEdit;

namespace harrowby::app {

/// Asks for a new user, or for a new password of one. It closes only when what it asks for has been stored.
class UserDialog final : public QDialog
{
    Q_OBJECT

public:
    /// Saves what was typed; a problem is shown in the dialog.
    using Save = std::function<UsersTable::Problem(const NewUser &user)>;

    /// For a new user with an empty `name`, else for the password of that one.
    UserDialog(const QString &name, Save save, QWidget *parent = nullptr);

    void accept() override;

private:
    void addName(QFormLayout &form, const QString &name);
    void addType(QFormLayout &form);
    void addPassword(QFormLayout &form);
    void layOut(QFormLayout &form, const QString &action);
    [[nodiscard]] NewUser entered() const;
    [[nodiscard]] QString problem() const;

    Save m_save;
    QLineEdit *m_name = nullptr; ///< null when only the password is asked for
    QComboBox *m_type = nullptr; ///< the same
    QLineEdit *m_password = nullptr;
    QLineEdit *m_again = nullptr;
    QLabel *m_problem = nullptr;
};

} // namespace harrowby::app
