// SPDX-License-Identifier: MIT
#pragma once

#include "app/activity/activity_search.h"

#include <QString>
#include <QStringList>
#include <QWidget>

class QComboBox;
class QDateEdit;
class QHBoxLayout;
class QLabel;
class QLineEdit;
class QPushButton;

namespace harrowby::app {

/// Which days, kind, user and text are looked for.
class ActivityChoices final : public QWidget
{
    Q_OBJECT

public:
    explicit ActivityChoices(QWidget *parent = nullptr);

    [[nodiscard]] ActivityFilter filter() const;
    void offerUsers(const QStringList &users);

Q_SIGNALS:
    /// Something else is to be looked for. A text counts once Enter or "Find" is pressed.
    void changed();

private:
    void createDays();
    void createOthers();
    QHBoxLayout *makeFirstRow();
    QHBoxLayout *makeSecondRow();
    QComboBox *makeChoice(const QString &name, const QString &spoken);
    void followDays();
    [[nodiscard]] ActivityDays days() const;

    QComboBox *m_days = nullptr;
    QDateEdit *m_from = nullptr;
    QDateEdit *m_to = nullptr;
    QLabel *m_between = nullptr;
    QComboBox *m_kind = nullptr;
    QComboBox *m_user = nullptr;
    QLineEdit *m_text = nullptr;
    QPushButton *m_find = nullptr;
};

} // namespace harrowby::app
