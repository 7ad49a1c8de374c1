// SPDX-License-Identifier: MIT
#include "app/office/office_door.h"

#include "app/office/user_rules.h"
#include "app/office/users_table.h"
#include "app/records/deeds.h"
#include "app/records/sqlite_records.h"
#include "basic/administrator.h"
#include "basic/text.h"
#include "basic/values.h"

#include <QCryptographicHash>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

using Kind = DoorAnswer::Kind;

/// Those who can log in at all, with what decides whether they are let in.
const auto loginRows = u"SELECT UPPER(Username), InventoryUse, %1, UPPER(Password) FROM Users WHERE Type <> '%2'"_s.arg(
    stockRight, viewerType);

QByteArray passwordMark(const SqliteStatement &row)
{
    return QCryptographicHash::hash(row.text(3).toUtf8(), QCryptographicHash::Sha256);
}

/// A row of `loginRows`. As the till's login reads it: who may use it, and the right to stock.
DoorAnswer answerFor(const SqliteStatement &row)
{
    const QString name = row.text(0);
    if (name == administratorName)
        return {Kind::Open, {}, {name, true, true, passwordMark(row)}};
    if (!valueEqualsTrue(row.value(1)))
        return {Kind::NotEnabled, {}, {name, false, false}};
    const bool mayKeepStock = valueIsTrue(row.value(2));
    return {mayKeepStock ? Kind::Open : Kind::NoRight, {}, {name, false, mayKeepStock, passwordMark(row)}};
}

} // namespace

DoorAnswer askAtDoor(sqlite3 *database, const QString &name, const QString &password)
{
    const QString comparedName = trimmedUpper(name);
    const QString compared = trimmedUpper(password);
    if (comparedName.isEmpty() || compared.isEmpty())
        return {Kind::Blank, {}, {}};
    SqliteStatement query(database, loginRows + u" AND UPPER(Username) = ?1 AND UPPER(Password) = ?2"_s,
                          {comparedName, compared});
    if (query.next()) // of several, the till takes the first one, too
        return answerFor(query);
    return query.error() ? DoorAnswer{Kind::Failed, *query.error(), {}} : DoorAnswer{Kind::Wrong, {}, {}};
}

void noteAtDoor(sqlite3 *database, const DoorAnswer &answer, const QString &name)
{
    SqliteRecords records(database);
    const Deeds deeds(records, officePlace);
    switch (answer.kind) {
    case Kind::Open:
        (void)deeds.add({deed::loggedIn, name, u"Opened the office"_s});
        break;
    case Kind::Wrong:
        if (SqliteStatement(database, u"SELECT 1 FROM Users WHERE UPPER(Username) = ?1"_s, {name}).next())
            (void)deeds.add({deed::loginRefused, name, u"Wrong password"_s});
        else
            (void)deeds.add({deed::loginRefused, {}, u"Unknown user name"_s});
        break;
    case Kind::NotEnabled:
    case Kind::NoRight:
        (void)deeds.add({deed::loginRefused, name, u"Not enough rights"_s});
        break;
    default:
        break;
    }
}

DoorAnswer findKeyHolder(sqlite3 *database)
{
    SqliteStatement query(database, loginRows);
    while (query.next()) {
        if (answerFor(query).kind == Kind::Open)
            return {Kind::Open, {}, {}};
    }
    return query.error() ? DoorAnswer{Kind::Failed, *query.error(), {}} : DoorAnswer{Kind::NobodyCould, {}, {}};
}

QString DoorWatch::refusal() const
{
    const auto words = [this](const QString &why) {
        return u"%1 since the office was opened. Nothing was done: please close the office, and log in again."_s.arg(
            why.arg(m_user.name));
    };
    QString why = u"%1 can no longer log in: the user was changed or removed"_s;
    SqliteStatement query(m_database, loginRows + u" AND UPPER(Username) = ?1"_s, {m_user.name});
    while (query.next()) {
        const DoorAnswer answer = answerFor(query);
        if (!m_user.passwordMark.isEmpty() && passwordMark(query) != m_user.passwordMark)
            why = u"The password of %1 was changed"_s;
        else if (answer.kind == Kind::Open)
            return {};
        else
            return words(answer.kind == Kind::NoRight
                             ? u"The right \"%1\" was taken away from %2"_s.arg(stockRightTitle())
                             : u"The right to use the till was taken away from %1"_s);
    }
    return query.error() ? engineWords(u"The users could not be read. Nothing was done."_s, *query.error())
                         : words(why);
}

void DoorWatch::followPassword(const QString &userName)
{
    if (m_user.passwordMark.isEmpty() || trimmedUpper(userName) != m_user.name)
        return;
    SqliteStatement query(m_database, loginRows + u" AND UPPER(Username) = ?1"_s, {m_user.name});
    if (query.next())
        m_user.passwordMark = passwordMark(query);
}

} // namespace harrowby::app
