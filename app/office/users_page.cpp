// SPDX-License-Identifier: MIT
#include "app/office/users_page.h"

#include "app/boxes/office_box.h"
#include "app/office/right_boxes.h"
#include "app/office/role_buttons.h"
#include "app/office/user_dialog.h"
#include "app/office/user_rules.h"
#include "app/shop/password_rules.h"
#include "theme/dialogs.h"

#include <QComboBox>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QScrollArea>
#include <QScroller>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include <limits>
#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr int listWidth = 300;
constexpr int smallListWidth = 250; ///< in a window for a small screen
constexpr int smallWindow = 900;
constexpr int besideRight = 72; ///< a right's box, its paddings, and what scrolls the rights
constexpr int rowHeight = 56;

QString secondLine(const StoreUser &user)
{
    const QString obstacle = loginObstacle(user);
    const Role *role = isAdministrator(user.name) ? nullptr : roleWith(user.rights);
    return user.type + (role != nullptr ? u", "_s + role->name.toLower() : QString()) +
           (obstacle.isEmpty() ? QString() : u" \u2013 "_s + obstacle);
}

QListWidgetItem *makeRow(const StoreUser &user)
{
    auto *row = new QListWidgetItem(user.name + u'\n' + secondLine(user));
    row->setSizeHint({0, rowHeight});
    row->setToolTip(row->text().toHtmlEscaped());
    return row;
}

} // namespace

UsersPage::UsersPage(UsersTable table, QWidget *parent) : OfficePage(parent), m_table(std::move(table))
{
    auto *columns = new QHBoxLayout(this);
    columns->setContentsMargins(16, 16, 16, 16);
    columns->setSpacing(24);
    columns->addLayout(makeList());
    auto *right = new QVBoxLayout;
    right->setSpacing(8);
    right->addWidget(makeScroller(makeDetails()), 1);
    right->addWidget(m_outcome); // not scrolled
    columns->addLayout(right, 1);
    fill();
}

QVBoxLayout *UsersPage::makeList()
{
    m_list = new QListWidget(this);
    m_list->setObjectName(u"users"_s);
    m_list->setAccessibleName(u"Users"_s);
    m_list->setFixedWidth(listWidth);
    m_list->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    m_list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_list->setTextElideMode(Qt::ElideRight);
    connect(m_list, &QListWidget::currentRowChanged, this, &UsersPage::showUser);
    auto *add = new QPushButton(u"&Add User \u2026"_s, this);
    add->setObjectName(u"addUser"_s);
    makePrimary(*add);
    connect(add, &QPushButton::clicked, this, &UsersPage::addUser);

    auto *rows = new QVBoxLayout;
    rows->setSpacing(12);
    rows->addWidget(m_list, 1);
    rows->addWidget(add);
    return rows;
}

QVBoxLayout *UsersPage::makeDetails()
{
    m_name = makeOfficeText(this, {});
    m_name->setObjectName(u"chosenUser"_s);
    QFont large = font();
    large.setPointSizeF(large.pointSizeF() + 3);
    large.setBold(true);
    m_name->setFont(large);
    m_type = new QComboBox(this);
    m_type->setObjectName(u"chosenType"_s);
    m_type->setAccessibleName(u"Type"_s);
    m_type->setFocusPolicy(Qt::StrongFocus);
    m_type->installEventFilter(this);
    m_type->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_type->setMinimumContentsLength(10);
    connect(m_type, &QComboBox::activated, this, &UsersPage::changeType);
    m_password = new QPushButton(u"Change &Password \u2026"_s, this);
    m_password->setObjectName(u"changePassword"_s);
    connect(m_password, &QPushButton::clicked, this, &UsersPage::changePassword);
    m_outcome = makeOfficeText(this, {});
    m_outcome->setObjectName(u"usersOutcome"_s);

    auto *rows = new QVBoxLayout;
    rows->setSpacing(4);
    rows->addWidget(m_name);
    auto *line = new QHBoxLayout;
    line->setSpacing(12);
    line->addWidget(m_type, 1);
    line->addWidget(m_password);
    rows->addLayout(line);
    m_roles = new RoleButtons(this);
    connect(m_roles, &RoleButtons::pressed, this, [this](qsizetype role) { takeRole(userRoles().at(role)); });
    rows->addWidget(m_roles);
    m_rights = new RightBoxes(this);
    connect(m_rights, &RightBoxes::switched, this, &UsersPage::switchRight);
    rows->addWidget(m_rights);
    rows->addStretch(1);
    return rows;
}

/// A low window scrolls the rights.
QWidget *UsersPage::makeScroller(QLayout *details)
{
    auto *area = new QScrollArea(this);
    area->setFrameShape(QFrame::NoFrame);
    area->setWidgetResizable(true);
    area->setFocusPolicy(Qt::NoFocus);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    auto *page = new QWidget;
    page->setLayout(details);
    details->setContentsMargins(0, 0, 0, 0);
    area->setWidget(page);
    page->setAutoFillBackground(false);
    area->viewport()->setAutoFillBackground(false);
    QScroller::grabGesture(area->viewport(), QScroller::TouchGesture);
    return area;
}

/// Over the type's list the wheel scrolls the rights, too; it changes the type only when the list has the focus.
bool UsersPage::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != m_type || event->type() != QEvent::Wheel || m_type->hasFocus())
        return QWidget::eventFilter(watched, event);
    event->ignore();
    return true;
}

void UsersPage::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    m_list->setFixedWidth(width() < smallWindow ? smallListWidth : listWidth);
    m_rights->wrap(layout()->contentsRect().width() - m_list->width() - layout()->spacing() - besideRight);
}

void UsersPage::fill()
{
    const StoreUser *before = current();
    constexpr qint64 noRow = std::numeric_limits<qint64>::min();
    const qint64 chosen = before != nullptr ? before->row : noRow;
    const UsersTable::Listing listing = m_table.list();
    m_isUnread = listing.problem.has_value();
    if (!m_isUnread || !listing.users.isEmpty()) // else those that were read before stay
        m_users = listing.users;
    {
        const QSignalBlocker quietly(m_list);
        m_list->clear();
        for (const StoreUser &user : std::as_const(m_users)) {
            m_list->addItem(makeRow(user));
            if (user.row == chosen)
                m_list->setCurrentRow(m_list->count() - 1);
        }
        if (m_list->currentRow() < 0 && !m_users.isEmpty())
            m_list->setCurrentRow(0);
    }
    showUser();
    if (listing.problem)
        showOutcome(*m_outcome, u"\u26a0 "_s + *listing.problem);
}

void UsersPage::readAnew()
{
    if (m_isUnread)
        fill();
}

const StoreUser *UsersPage::current() const
{
    const int row = m_list->currentRow();
    return row >= 0 && row < m_users.size() ? &m_users.at(row) : nullptr;
}

void UsersPage::showUser()
{
    const StoreUser *user = current();
    const bool locked = user == nullptr || lockedRightsWords(user->name);
    m_name->setText(user == nullptr ? QString()
                    : locked        ? user->name + u" (has every right and keeps it)"_s
                                    : user->name);
    m_rights->showRights(user != nullptr ? user->rights : QStringList(), locked);
    m_roles->mark(user != nullptr && !locked ? roleWith(user->rights) : nullptr);
    m_roles->setDisabled(locked);
    m_password->setEnabled(user != nullptr);
    m_type->setEnabled(user != nullptr && (!locked || !user->hasType || noTypeWords(user->name, user->type)));
    if (user != nullptr)
        showType(*user);
    m_outcome->clear();
}

/// A type that only a host uses is added to the list, so that it stays selectable.
void UsersPage::showType(const StoreUser &user)
{
    const QSignalBlocker quietly(m_type);
    m_type->clear();
    for (const UserType &type : userTypes()) {
        if (!noTypeWords(user.name, type.name))
            m_type->addItem(type.name + u" ("_s + type.words + u')', type.name);
    }
    if (m_type->findData(user.type) < 0)
        m_type->addItem(user.hasType ? user.type : u"(none)"_s, user.type);
    m_type->setCurrentIndex(m_type->findData(user.type));
}

void UsersPage::addUser()
{
    QString added;
    UserDialog dialog(
        {},
        [&](const NewUser &user) {
            added = storedUserName(user.name);
            return m_table.add(user);
        },
        this);
    if (dialog.exec() != QDialog::Accepted)
        return;
    fill();
    const auto rows = m_list->findItems(added + u'\n', Qt::MatchStartsWith | Qt::MatchCaseSensitive);
    if (!rows.isEmpty())
        m_list->setCurrentItem(rows.constFirst());
    showOutcome(*m_outcome,
                u"%1 was added. The rights are the usual ones of the type; switch them as you like."_s.arg(added));
}

void UsersPage::changePassword()
{
    const StoreUser *chosen = current();
    if (chosen == nullptr)
        return;
    const StoreUser user = *chosen;
    UserDialog dialog(
        user.name, [&](const NewUser &entered) { return m_table.setPassword(user, entered.password); }, this);
    if (dialog.exec() == QDialog::Accepted)
        finish({}, u"The password of %1 was changed."_s.arg(user.name));
}

void UsersPage::switchRight(const QString &column, bool on)
{
    const StoreUser *user = current();
    if (user == nullptr)
        return;
    const QString done = on ? u"Saved: %1 now has the right."_s : u"Saved: %1 no longer has the right."_s;
    finish(m_table.setRight(*user, column, on), done.arg(user->name) + u" It takes effect at the next login."_s);
}

void UsersPage::changeType()
{
    const StoreUser *user = current();
    if (user == nullptr || m_type->currentData().toString() == user->type)
        return;
    finish(m_table.setType(*user, m_type->currentData().toString()), u"Saved: the type of %1."_s.arg(user->name));
}

void UsersPage::takeRole(const Role &role)
{
    const StoreUser *user = current();
    if (user == nullptr)
        return;
    const QString name = user->name;
    const QString changes = changeWords(user->rights, role.rights);
    if (changes.isEmpty()) {
        fill(); // the press has unchecked the button
        return showOutcome(*m_outcome, u"%1 has exactly these rights already."_s.arg(name));
    }
    finish(m_table.setRole(*user, role),
           u"Saved: %1 has the rights of a %2. %3 It takes effect at the next login."_s.arg(name, role.name.toLower(),
                                                                                            changes));
}

/// Reads the users again, also after a failure.
void UsersPage::finish(const UsersTable::Problem &problem, const QString &done)
{
    fill();
    if (problem)
        tellInOffice(this, *problem);
    else if (m_outcome->text().isEmpty())
        showOutcome(*m_outcome, done);
}

} // namespace harrowby::app
