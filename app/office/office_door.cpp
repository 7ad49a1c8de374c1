// SPDX-License-Identifier: MIT
#include "app/office/office_door.h"

#include "app/office/user_rules.h"
#include "basic/administrator.h"
#include "basic/text.h"

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

using Kind = DoorAnswer::Kind;

const auto administrators =
    u"SELECT 1 FROM Users WHERE Type <> '%1' AND UPPER(Username) = '%2'"_s.arg(viewerType, administratorName);

DoorAnswer answer(sqlite3 *database, const QString &select, const QList<DbValue> &values, Kind otherwise)
{
    SqliteStatement query(database, select, values);
    const bool found = query.next();
    if (query.error())
        return {Kind::Failed, *query.error()};
    return {found ? Kind::Open : otherwise, {}};
}

} // namespace

DoorAnswer askAtDoor(sqlite3 *database, const QString &password)
{
    const QString compared = trimmedUpper(password);
    if (compared.isEmpty())
        return {Kind::Blank, {}};
    return answer(database, administrators + u" AND UPPER(Password) = ?1"_s, {compared}, Kind::Wrong);
}

DoorAnswer findAdministrator(sqlite3 *database)
{
    return answer(database, administrators, {}, Kind::NoAdministrator);
}

} // namespace harrowby::app
