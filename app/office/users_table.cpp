// SPDX-License-Identifier: MIT
#include "app/office/users_table.h"

#include "app/office/office_door.h"
#include "app/office/user_rules.h"
#include "app/records/statement_pieces.h"
#include "app/shop/failure_text.h"
#include "app/shop/password_rules.h"
#include "basic/text.h"
#include "basic/values.h"

#include <QCryptographicHash>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr int storedTrue = -1; // the only number that the login takes for the right to use the till

const auto noChange = u"The user was not changed."_s;
const auto notAdded = u"The user was not added."_s;

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

/// Of a row, before the rights.
constexpr qsizetype firstRight = 4;

/// Columns: the row's identity, Username, Type, Password, then the rights.
StoreUser userOf(const RecordRow &row, const QStringList &columns)
{
    const QString password = recordText(row.at(3));
    StoreUser user;
    user.row = recordNumber(row.at(0));
    user.name = recordText(row.at(1));
    user.type = recordText(row.at(2));
    user.hasType = !std::holds_alternative<std::monostate>(row.at(2));
    user.nameCanBeTyped = canBeTyped(user.name);
    user.passwordCanBeTyped = canBeTyped(password);
    user.passwordMark = QCryptographicHash::hash(password.toUtf8(), QCryptographicHash::Sha256);
    const bool administrator = isAdministrator(user.name);
    for (qsizetype i = 0; i < columns.size(); ++i) {
        if (administrator || gives(columns.at(i), row.at(firstRight + i)))
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

Unexpected<QString> changedMeanwhile(const QString &name)
{
    return Unexpected(
        u"Somebody else has changed %1 meanwhile. Nothing was changed: look at what is stored now."_s.arg(name));
}

/// `rest` calls the row's identity %1.
QString selectUsers(const Records &records, const QString &rest)
{
    const QString identity = records.dialect().rowId;
    return u"SELECT %1, Username, Type, Password, %2 FROM Users "_s.arg(identity, rightColumns().join(u", "_s)) +
           rest.arg(identity);
}

RecordRow rowOf(const RecordCells &cells)
{
    RecordRow row;
    for (int column = 0; column < cells.count(); ++column)
        row << cells.value(column);
    return row;
}

} // namespace

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
    const auto take = [&](const RecordCells &cells) {
        listing.users << userOf(rowOf(cells), columns);
        return true;
    };
    Records &records = m_deeds.records();
    if (const auto read =
            records.readEach(nullptr, {selectUsers(records, u"ORDER BY UPPER(Username), %1"_s), {}}, take);
        !read)
        listing.problem = failureWords(u"The users could not be read."_s, read.error());
    return listing;
}

UsersTable::Problem UsersTable::add(const NewUser &user) const
{
    if (const auto name = checkUserName(user.name); !name)
        return name.error();
    if (const auto password = checkPassword(user.password); !password)
        return password.error();
    // One transaction, so that no other program adds the same name between check and insert.
    return together(notAdded, [&] { return addUnlessTaken(user); });
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
    QList<RecordValue> values = {name, storedPassword(user.password), user.type};
    for (const QString &column : columns)
        values << std::int64_t{user.rights.contains(column) ? storedTrue : 0};
    const QString insert = u"INSERT INTO Users (Username, Password, Type, %1) VALUES (%2)"_s.arg(
        columns.join(u", "_s), placesFor(values.size()));
    if (auto refused = write({insert, values}, notAdded))
        return refused;
    const QString rights = user.rights.isEmpty() ? u"no right"_s : titlesOf(user.rights);
    return write(m_deeds.statement(deed::userAdded, u"%1 was added as %2 with: %3."_s.arg(name, user.type, rights)),
                 notAdded);
}

UsersTable::Problem UsersTable::setPassword(const StoreUser &user, const QString &password) const
{
    if (const auto checked = checkPassword(password); !checked)
        return checked.error();
    const Plan plan = [&](const StoreUser &now, const QList<DbValue> &) -> Result<Columns, QString> {
        if (now.passwordMark != user.passwordMark)
            return changedMeanwhile(user.name);
        return Columns{{u"Password"_s, storedPassword(password)}};
    };
    auto problem =
        change(user, plan, m_deeds.statement(deed::passwordSet, u"The password of %1 was changed."_s.arg(user.name)));
    if (!problem && m_door)
        m_door->followPassword(user.name);
    return problem;
}

UsersTable::Problem UsersTable::setRight(const StoreUser &user, const QString &column, bool on) const
{
    const auto at = rightColumns().indexOf(column);
    if (at < 0)
        return noChange;
    if (auto locked = lockedRightsWords(user.name))
        return locked;
    const Plan plan = [&](const StoreUser &now, const QList<DbValue> &flags) -> Result<Columns, QString> {
        if (now.rights.contains(column) != user.rights.contains(column))
            return changedMeanwhile(user.name);
        return Columns{{column, flagLike(flags.at(at), on)}};
    };
    const QString what = on ? u"%1 was given the right \"%2\"."_s : u"%1 was taken the right \"%2\" away."_s;
    return change(user, plan, m_deeds.statement(deed::rightsChanged, what.arg(user.name, titlesOf({column}))));
}

UsersTable::Problem UsersTable::setType(const StoreUser &user, const QString &type) const
{
    if (auto refused = noTypeWords(user.name, type))
        return refused;
    const Plan plan = [&](const StoreUser &now, const QList<DbValue> &) -> Result<Columns, QString> {
        if (now.type != user.type || now.hasType != user.hasType)
            return changedMeanwhile(user.name);
        return Columns{{u"Type"_s, type}};
    };
    const QString before = user.type.isEmpty() ? u"none"_s : user.type;
    return change(
        user, plan,
        m_deeds.statement(deed::rightsChanged, u"The type of %1: %2, before %3."_s.arg(user.name, type, before)));
}

UsersTable::Problem UsersTable::setRole(const StoreUser &user, const Role &role) const
{
    if (auto locked = lockedRightsWords(user.name))
        return locked;
    const Plan plan = [&](const StoreUser &now, const QList<DbValue> &flags) -> Result<Columns, QString> {
        if (now.rights != user.rights)
            return changedMeanwhile(user.name);
        Columns columns;
        for (qsizetype i = 0; i < flags.size(); ++i) {
            const QString column = rightColumns().at(i);
            columns.emplaceBack(column, flagLike(flags.at(i), role.rights.contains(column)));
        }
        return columns;
    };
    return change(
        user, plan,
        m_deeds.statement(deed::rightsChanged, u"%1 was made %2. %3"_s.arg(user.name, role.name.toLower(),
                                                                           changeWords(user.rights, role.rights))));
}

UsersTable::Problem UsersTable::change(const StoreUser &user, const Plan &plan, const RecordStatement &told) const
{
    return together(noChange, [&] { return changeLocked(user, plan, told); });
}

UsersTable::Problem UsersTable::changeLocked(const StoreUser &user, const Plan &plan, const RecordStatement &told) const
{
    // The name is compared too: VACUUM by another program may have renumbered the rows since they were read.
    const auto rows = m_deeds.records().read(
        {selectUsers(m_deeds.records(), u"WHERE %1 = ? AND Username = ?"_s), {std::int64_t{user.row}, user.name}});
    if (!rows)
        return failureWords(noChange, rows.error());
    if (rows->isEmpty())
        return u"The store has no user \"%1\" any more. Nothing was changed."_s.arg(user.name);
    const RecordRow &row = rows->constFirst();
    const auto columns = plan(userOf(row, rightColumns()), row.sliced(firstRight));
    if (!columns)
        return columns.error();
    if (auto problem = store(user, *columns))
        return problem;
    return write(told, noChange);
}

UsersTable::Problem UsersTable::store(const StoreUser &user, const Columns &columns) const
{
    QStringList sets;
    QList<RecordValue> values;
    for (const auto &[column, value] : columns) {
        sets << column + u" = ?"_s;
        values << value;
    }
    values << std::int64_t{user.row} << user.name;
    return write({u"UPDATE Users SET %1 WHERE %2 = ? AND Username = ?"_s.arg(sets.join(u", "_s),
                                                                             m_deeds.records().dialect().rowId),
                  values},
                 noChange);
}

/// Within `together`, which has made the table of deeds.
UsersTable::Problem UsersTable::write(const RecordStatement &statement, const QString &notDone) const
{
    if (const auto written = m_deeds.records().write(kept::activity(), statement); !written)
        return failureWords(notDone, written.error());
    return {};
}

UsersTable::Problem UsersTable::together(const QString &notDone, const std::function<Problem()> &work) const
{
    Problem problem = notDone; // all that is said when the work breaks off
    const auto kept = m_deeds.records().together(kept::activity(), [&] {
        const QString refusal = m_door ? m_door->refusal() : QString();
        problem = refusal.isEmpty() ? work() : Problem(refusal);
        return !problem;
    });
    return kept ? problem : failureWords(notDone, kept.error());
}

} // namespace harrowby::app
