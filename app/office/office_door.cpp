// SPDX-License-Identifier: MIT
#include "app/office/office_door.h"

#include "basic/administrator.h"
#include "basic/text.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

using Kind = DoorAnswer::Kind;

const auto administrators =
    u"SELECT 1 FROM Users WHERE Type <> 'VIEWER' AND UPPER(Username) = '%1'"_s.arg(administratorName);

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

std::chrono::milliseconds pauseAfter(int wrongTries)
{
    using namespace std::chrono_literals;
    constexpr int free = 3;
    constexpr int steps = 4;
    if (wrongTries < free)
        return 0ms;
    return 1000ms * (1 << std::min(wrongTries - free, steps));
}

} // namespace harrowby::app
