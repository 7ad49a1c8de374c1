// SPDX-License-Identifier: MIT
#pragma once

#include "plugins/report/period.h"

#include <QWidget>

class QComboBox;
class QDateEdit;
class QHBoxLayout;

namespace harrowby::report {

/// Chooses a period: today, this week, this month, or any days from one to another.
class PeriodPicker : public QWidget
{
    Q_OBJECT

public:
    /// Starts with the month of `now`.
    explicit PeriodPicker(const QDate &now, QWidget *parent = nullptr);
    [[nodiscard]] Period period() const;
    /// For "today" and its like, when midnight has passed.
    void setNow(const QDate &now);

Q_SIGNALS:
    void changed();

private:
    enum Choice { Today, ThisWeek, ThisMonth, FromTo };

    void createChoice(QHBoxLayout &row);
    QDateEdit *createDay(QHBoxLayout &row, const QString &name, const QString &caption);
    void choose(int choice);
    void dayEdited(const QDateEdit &edited);
    void showPeriod(const Period &period);

    QDate m_now;
    QComboBox *m_choice;
    QDateEdit *m_from;
    QDateEdit *m_to;
};

/// A small caption above a control, which it names.
[[nodiscard]] QWidget *captioned(const QString &caption, QWidget *control, QWidget *parent);

} // namespace harrowby::report
