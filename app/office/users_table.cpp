// SPDX-License-Identifier: MIT
#include "app/office/users_table.h"

#include "app/office/user_rules.h"
#include "app/shop/failure_text.h"
#include "app/shop/password_rules.h"
#include "basic/text.h"
#include "basic/values.h"

#include <sqlite3.h>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr int storedTrue = -1; // the only number that the login takes for the right to use the till

const auto noChange = u"The user was not changed."_s;

QStringList rightColumns()
{
    QStringList columns;
    for (const Right &right : userRights())
        columns << right.column;
    return columns;
}

bool gives(const QString &column, const DbValue &value)
{
    return column == userRights().constFirst().column ? valueEqualsTrue(value) : valueIsTrue(value);
}

/// Columns: rowid, Username, Type, Password, then the rights.
StoreUser userOf(const SqliteStatement &row, const QStringList &columns)
{
    StoreUser user;
    user.row = row.number(0);
    user.name = row.text(1);
    user.type = row.text(2);
    user.hasType = !std::holds_alternative<std::monostate>(row.value(2));
    user.nameCanBeTyped = canBeTyped(user.name);
    user.passwordCanBeTyped = canBeTyped(row.text(3));
    const bool administrator = isAdministrator(user.name);
    for (int i = 0; i < columns.size(); ++i) {
        if (administrator || gives(columns.at(i), row.value(4 + i)))
            user.rights << columns.at(i);
    }
    return user;
}

/// In the form that the host has stored: a text "True" stays one.
DbValue flagLike(const DbValue &before, bool on)
{
    const auto *text = std::get_if<QString>(&before);
    if (text != nullptr && (*text == u"True"_s || *text == u"False"_s))
        return on ? u"True"_s : u"False"_s;
    return std::int64_t{on ? storedTrue : 0};
}

} // namespace

QString engineWords(const QString &what, const SqlError &error)
{
    const DbFailure failure{DbFailure::Kind::Write, {}, error.reason, error.code};
    return what + u'\n' + failureReason(failure) + u'\n' + failureAdvice(failure);
}

QString loginObstacle(const StoreUser &user)
{
    if (user.type == viewerType)
        return u"a VIEWER cannot log in"_s;
    if (!user.hasType)
        return u"has no type"_s;
    if (!user.nameCanBeTyped)
        return u"the login cannot find this name"_s;
    if (!user.passwordCanBeTyped)
        return u"the login cannot find the password; give a new one"_s;
    return user.rights.contains(userRights().constFirst().column) ? QString() : u"may not use the till"_s;
}

UsersTable::Listing UsersTable::list() const
{
    Listing listing;
    const QStringList columns = rightColumns();
    SqliteStatement query(
        m_database, u"SELECT rowid, Username, Type, Password, %1 FROM Users ORDER BY UPPER(Username), rowid"_s.arg(
                        columns.join(u", "_s)));
    while (query.next())
        listing.users << userOf(query, columns);
    if (query.error())
        listing.problem = engineWords(u"The users could not be read."_s, *query.error());
    return listing;
}

UsersTable::Problem UsersTable::add(const NewUser &user) const
{
    if (const auto name = checkUserName(user.name); !name)
        return name.error();
    if (const auto password = checkPassword(user.password); !password)
        return password.error();
    const auto notAdded = u"The user was not added."_s;
    // One transaction, so that no other program adds the same name between check and insert.
    if (auto error = runSql(m_database, u"BEGIN IMMEDIATE"_s))
        return engineWords(notAdded, *error);
    auto problem = addUnlessTaken(user);
    if (!problem) {
        if (auto error = runSql(m_database, u"COMMIT"_s))
            problem = engineWords(notAdded, *error);
    }
    if (problem)
        (void)runSql(m_database, u"ROLLBACK"_s);
    return problem;
}

UsersTable::Problem UsersTable::addUnlessTaken(const NewUser &user) const
{
    const QString name = storedUserName(user.name);
    const auto [users, problem] = list();
    if (problem)
        return problem;
    const bool taken = std::any_of(users.cbegin(), users.cend(),
                                   [&](const StoreUser &other) { return storedUserName(other.name) == name; });
    if (taken)
        return u"There is a user \"%1\" already. Capital and small letters make no difference."_s.arg(name);

    const QStringList columns = rightColumns();
    QStringList places = {u"?1"_s, u"?2"_s, u"?3"_s};
    QList<DbValue> values = {name, storedPassword(user.password), user.type};
    for (const QString &column : columns) {
        values << DbValue(user.rights.contains(column) ? storedTrue : 0);
        places << u"?%1"_s.arg(values.size());
    }
    const QString insert = u"INSERT INTO Users (Username, Password, Type, %1) VALUES (%2)"_s.arg(columns.join(u", "_s),
                                                                                                 places.join(u", "_s));
    if (auto error = runSql(m_database, insert, values))
        return engineWords(u"The user was not added."_s, *error);
    return {};
}

UsersTable::Problem UsersTable::setPassword(const StoreUser &user, const QString &password) const
{
    if (const auto checked = checkPassword(password); !checked)
        return checked.error();
    return change(user, u"Password"_s, storedPassword(password));
}

UsersTable::Problem UsersTable::setRight(const StoreUser &user, const QString &column, bool on) const
{
    if (!rightColumns().contains(column))
        return noChange;
    if (isAdministrator(user.name))
        return u"ADMINISTRATOR has every right and keeps it."_s;
    DbValue stored;
    {
        // Closed before the change: with an open read statement SQLite returns SQLITE_BUSY without calling the handler.
        SqliteStatement before(m_database, u"SELECT %1 FROM Users WHERE rowid = ?1"_s.arg(column), {user.row});
        if (before.next())
            stored = before.value(0);
        if (before.error())
            return engineWords(noChange, *before.error());
    }
    return change(user, column, flagLike(stored, on));
}

UsersTable::Problem UsersTable::setType(const StoreUser &user, const QString &type) const
{
    if (isAdministrator(user.name) && type == viewerType)
        return u"ADMINISTRATOR must be able to log in."_s;
    return change(user, u"Type"_s, type);
}

UsersTable::Problem UsersTable::change(const StoreUser &user, const QString &column, const DbValue &value) const
{
    // The name is compared too: VACUUM by another program may have renumbered the rows since they were read.
    const QString update = u"UPDATE Users SET %1 = ?1 WHERE rowid = ?2 AND Username = ?3"_s.arg(column);
    if (auto error = runSql(m_database, update, {value, user.row, user.name}))
        return engineWords(noChange, *error);
    if (sqlite3_changes(m_database) == 0)
        return u"The store has no user \"%1\" any more. Nothing was changed."_s.arg(user.name);
    return {};
}

} // namespace harrowby::app
