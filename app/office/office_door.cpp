// SPDX-License-Identifier: MIT
#include "app/office/office_door.h"

#include "app/office/user_rules.h"
#include "basic/administrator.h"
#include "basic/text.h"
#include "basic/values.h"

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

using Kind = DoorAnswer::Kind;

/// Those who can log in at all, with what decides whether they are let in.
const auto loginRows =
    u"SELECT UPPER(Username), InventoryUse, InventoryReorder FROM Users WHERE Type <> '%1'"_s.arg(viewerType);

/// A row of `loginRows`. As the till's login reads it: who may use it, and the right to stock.
DoorAnswer answerFor(const SqliteStatement &row)
{
    const QString name = row.text(0);
    if (name == administratorName)
        return {Kind::Open, {}, {name, true, true}};
    if (!valueEqualsTrue(row.value(1)))
        return {Kind::NotEnabled, {}, {name, false, false}};
    const bool mayKeepStock = valueIsTrue(row.value(2));
    return {mayKeepStock ? Kind::Open : Kind::NoRight, {}, {name, false, mayKeepStock}};
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

DoorAnswer findKeyHolder(sqlite3 *database)
{
    SqliteStatement query(database, loginRows);
    while (query.next()) {
        if (answerFor(query).kind == Kind::Open)
            return {Kind::Open, {}, {}};
    }
    return query.error() ? DoorAnswer{Kind::Failed, *query.error(), {}} : DoorAnswer{Kind::NobodyCould, {}, {}};
}

} // namespace harrowby::app
