// SPDX-License-Identifier: MIT
#pragma once

#include "app/boxes/office_page.h"
#include "app/office/users_table.h"

#include <QList>

#include <functional>

class QComboBox;
class QLabel;
class QLayout;
class QListWidget;
class QPushButton;
class QVBoxLayout;

namespace harrowby::app {

class RightBoxes;
class RoleButtons;

/// The store's users: each right is a switch that is stored at once, and a role is seven of them.
class UsersPage final : public OfficePage
{
    Q_OBJECT

public:
    /// What the table works on must outlive it.
    explicit UsersPage(UsersTable table, QWidget *parent = nullptr);

    void readAnew() override;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    QVBoxLayout *makeList();
    QVBoxLayout *makeDetails();
    QWidget *makeScroller(QLayout *details);
    void fill();
    void showUser();
    void showType(const StoreUser &user);
    [[nodiscard]] const StoreUser *current() const;

    void addUser();
    void changePassword();
    void switchRight(const QString &column, bool on);
    void changeType();
    void takeRole(const Role &role);
    void finish(const UsersTable::Problem &problem, const QString &done);

    UsersTable m_table;
    QList<StoreUser> m_users;
    QListWidget *m_list = nullptr;
    QLabel *m_name = nullptr;
    QComboBox *m_type = nullptr;
    RoleButtons *m_roles = nullptr;
    RightBoxes *m_rights = nullptr;
    QPushButton *m_password = nullptr;
    QLabel *m_outcome = nullptr;
    bool m_isUnread = false; ///< when it was last tried
};

} // namespace harrowby::app
