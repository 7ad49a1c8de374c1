// SPDX-License-Identifier: MIT
#include "ui/privileges.h"

#include "basic/values.h"
#include "store/recordset.h"

using namespace Qt::StringLiterals;

namespace harrowby {

namespace {

bool flag(DbRecordset &user, const QString &column)
{
    const std::optional<DbValue> value = user.Field(column).value();
    return value && valueIsTrue(*value);
}

} // namespace

Privileges Privileges::everyRight()
{
    return {true, true, true, true, true, true, true};
}

Privileges Privileges::ofRow(DbRecordset &user)
{
    Privileges rights;
    rights.CanSell = flag(user, u"InventorySales"_s);
    rights.CanReport = flag(user, u"InventoryReport"_s);
    rights.CanUndo = flag(user, u"InventoryUndo"_s);
    rights.CanDelete = flag(user, u"InventoryDelete"_s);
    rights.CanSettings = flag(user, u"InventorySettings"_s);
    rights.CanReorder = flag(user, u"InventoryReorder"_s);
    rights.CanEditStock = flag(user, u"InventoryReorder"_s); // Intended: one column, two rights
    return rights;
}

} // namespace harrowby
