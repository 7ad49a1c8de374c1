// SPDX-License-Identifier: MIT
#pragma once

#include "app/office/user_rules.h"

#include <QList>
#include <QWidget>

class QPushButton;

namespace harrowby::app {

/// One press for all seven switches: a button for each of userRoles(), marked when the user has exactly its rights.
class RoleButtons final : public QWidget
{
    Q_OBJECT

public:
    explicit RoleButtons(QWidget *parent = nullptr);

    /// Marks the role; null marks none.
    void mark(const Role *role);

Q_SIGNALS:
    /// The index of one of userRoles(). What is marked is to be said again.
    void pressed(qsizetype role);

private:
    QList<QPushButton *> m_buttons; ///< in the order of userRoles()
};

} // namespace harrowby::app
