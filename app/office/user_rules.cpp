// SPDX-License-Identifier: MIT
#include "app/office/user_rules.h"

#include "basic/administrator.h"
#include "basic/text.h"

using namespace Qt::StringLiterals;

namespace harrowby::app {

bool isAdministrator(const QString &name)
{
    return trimmedUpper(name) == administratorName;
}

const QList<Right> &userRights()
{
    static const QList<Right> rights = {
        {u"InventoryUse"_s, u"Use the till"_s, u"Log in at the till and sell from the quick-sale buttons."_s},
        {u"InventorySales"_s, u"Custom sales"_s, u"Sell any quantity by category and item, or from the search."_s},
        {u"InventoryReport"_s, u"Sales report"_s, u"Open the sales report (own sales only, without Settings)."_s},
        {u"InventoryUndo"_s, u"Undo"_s, u"Take back the last purchase or the last reorder."_s},
        {u"InventoryDelete"_s, u"Delete purchases"_s, u"Delete an older purchase by its ID."_s},
        {u"InventorySettings"_s, u"Settings"_s, u"Change settings and categories, see the sales activity."_s},
        {u"InventoryReorder"_s, u"Stock"_s, u"Reorder stock; add, edit and delete items."_s},
    };
    return rights;
}

const QList<UserType> &userTypes()
{
    static const QList<UserType> types = {
        {u"STAFF"_s, u"sells at the counter"_s},
        {u"MANAGER"_s, u"runs the shop"_s},
        {QString(viewerType), u"cannot log in at the till"_s},
    };
    return types;
}

QStringList usualRights(const QString &type)
{
    if (type == viewerType)
        return {};
    if (type != u"MANAGER"_s)
        return {u"InventoryUse"_s, u"InventorySales"_s};
    QStringList all;
    for (const Right &right : userRights())
        all << right.column;
    return all;
}

} // namespace harrowby::app
