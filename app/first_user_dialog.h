// SPDX-License-Identifier: MIT
#pragma once

#include <QDialog>
#include <QString>

class QLabel;
class QLineEdit;

namespace harrowby::app {

/// Asks for the password of a new store's first user, typed twice. It can be accepted only with a password that the
/// login finds again.
class FirstUserDialog final : public QDialog
{
    Q_OBJECT

public:
    explicit FirstUserDialog(const QString &storePath, QWidget *parent = nullptr);
    [[nodiscard]] QString password() const;

    void accept() override;

private:
    void createEntries();
    void layOut(const QString &storePath);
    [[nodiscard]] QString problem() const;
    void showProblem(const QString &text);

    QLineEdit *m_password = nullptr;
    QLineEdit *m_again = nullptr;
    QLabel *m_problem = nullptr;
};

} // namespace harrowby::app
