// SPDX-License-Identifier: MIT
#pragma once

#include "app/shop/receipt_head.h"

#include <QDialog>
#include <QString>

class QGridLayout;
class QLabel;
class QLineEdit;

namespace harrowby::app {

/// Asks for the password of a new store's first user, typed twice, and for what stands on its receipts. It can be
/// accepted only with a password that the login finds again, and with what fits a receipt.
class FirstUserDialog final : public QDialog
{
    Q_OBJECT

public:
    /// Only what `proposal` holds is asked for.
    explicit FirstUserDialog(const QString &storePath, const ReceiptProposal &proposal = {}, QWidget *parent = nullptr);
    [[nodiscard]] QString password() const;
    /// As proposed, or changed.
    [[nodiscard]] ReceiptProposal receipt() const;

    void accept() override;

private:
    struct Problem
    {
        QString text; ///< empty when there is none
        QLineEdit *entry = nullptr;
    };

    void createEntries(const ReceiptProposal &proposal);
    void layOut(const QString &storePath);
    [[nodiscard]] QGridLayout *layOutEntries();
    [[nodiscard]] Problem problem() const;
    void showProblem(const Problem &problem);

    QLineEdit *m_password = nullptr;
    QLineEdit *m_again = nullptr;
    QLineEdit *m_title = nullptr;    ///< null when it is not asked for
    QLineEdit *m_currency = nullptr; ///< the same
    QLabel *m_problem = nullptr;
};

} // namespace harrowby::app
