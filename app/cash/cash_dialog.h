// SPDX-License-Identifier: MIT
#pragma once

#include "app/cash/cash_choices.h"
#include "app/cash/tender.h"

#include <QDialog>
#include <QList>
#include <QString>

class QLabel;
class QLayout;
class QLineEdit;
class QPushButton;

namespace harrowby::app {

/// Asks how a purchase is paid, and shows the change. Digits, point and comma, Backspace and Delete enter the amount
/// from wherever the focus is; Enter pays once it is enough.
class CashDialog final : public QDialog
{
    Q_OBJECT

public:
    CashDialog(Cents total, const CashChoices &choices, QWidget *parent);

    /// Once it was accepted.
    [[nodiscard]] QList<PaymentPart> parts() const { return m_tender.parts(); }

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    void createAmounts();
    void layOut(const CashChoices &choices);
    QLayout *makeSum();
    QLayout *makeGiven();
    QLayout *makeWays(const QStringList &ways);
    QLayout *makeNotes(const QList<Cents> &notes);
    QLayout *makeKeypad();
    QLayout *makeEnd();
    QPushButton *makeKey(const QString &caption, const QString &name, const QString &spoken);
    void setTabOrders();
    bool type(const QString &keys);
    void charge(const QString &way);
    void follow();
    void tellChange();
    void pay();

    Tender m_tender;
    QLabel *m_charged = nullptr;
    QLineEdit *m_given = nullptr;
    QLabel *m_change = nullptr;
    QPushButton *m_takeBack = nullptr;
    QPushButton *m_pay = nullptr;
    QList<QPushButton *> m_keys; ///< in the order in which Tab walks them
};

} // namespace harrowby::app
