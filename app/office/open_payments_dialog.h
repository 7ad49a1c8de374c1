// SPDX-License-Identifier: MIT
#pragma once

#include "app/cash/open_intents.h"

#include <QDialog>
#include <QList>

class QLabel;
class QLayout;
class QListWidget;
class QPushButton;

namespace harrowby::app {

/// Payments that found no purchase, and what a person can do with each: say which purchase it paid for, or that nothing
/// was sold.
class OpenPaymentsDialog final : public QDialog
{
    Q_OBJECT

public:
    /// The records must outlive it.
    explicit OpenPaymentsDialog(const SignedDeeds &deeds, QWidget *parent = nullptr);

private:
    QListWidget *makeList(const QString &objectName, const QString &spoken);
    QLayout *makeButtons();
    void read();
    void readChoices();
    void followChoice();
    [[nodiscard]] const Payment *current() const;
    void countFor();
    void remove();
    void finish(OpenIntents::Outcome outcome, const QString &done);

    OpenIntents m_intents;
    QList<Payment> m_payments;
    QList<IntentChoice> m_choices;
    QListWidget *m_list = nullptr;
    QListWidget *m_purchases = nullptr;
    QLabel *m_outcome = nullptr;
    QPushButton *m_count = nullptr;
    QPushButton *m_remove = nullptr;
};

} // namespace harrowby::app
