// SPDX-License-Identifier: MIT
#pragma once

#include <QDialog>
#include <QString>

class QLabel;
class QLineEdit;
class QPushButton;

namespace harrowby::app {

/// Asks for the word or the number under which a cart is held.
class HoldDialog final : public QDialog
{
    Q_OBJECT

public:
    /// `cart` says what is held, "3 lines, 12.50".
    HoldDialog(const QString &cart, const QString &proposed, QWidget *parent);

    /// As a cart is held under it; never empty once the dialog was accepted.
    [[nodiscard]] QString word() const;
    /// Why the word does not do; it is marked, to be typed over.
    void refuse(const QString &reason);

private:
    void layOut(const QString &cart);
    void followEntry();

    QLineEdit *m_entry = nullptr;
    QLabel *m_problem = nullptr;
    QPushButton *m_hold = nullptr;
};

} // namespace harrowby::app
