// SPDX-License-Identifier: MIT
#include "app/office/user_rules.h"

#include "basic/administrator.h"
#include "basic/text.h"

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

QStringList allRights()
{
    QStringList all;
    for (const Right &right : userRights())
        all << right.column;
    return all;
}

QStringList cashierRights()
{
    return {u"InventoryUse"_s, u"InventorySales"_s};
}

/// What is in the one and not in the other.
QStringList without(const QStringList &rights, const QStringList &others)
{
    QStringList left;
    for (const QString &right : rights) {
        if (!others.contains(right))
            left << right;
    }
    return left;
}

} // namespace

bool isAdministrator(const QString &name)
{
    return trimmedUpper(name) == administratorName;
}

std::optional<QString> lockedRightsWords(const QString &name)
{
    return isAdministrator(name) ? std::optional(u"ADMINISTRATOR has every right and keeps it."_s) : std::nullopt;
}

std::optional<QString> noTypeWords(const QString &name, const QString &type)
{
    return isAdministrator(name) && type == viewerType ? std::optional(u"ADMINISTRATOR must be able to log in."_s)
                                                       : std::nullopt;
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
        {stockRight, u"Stock"_s, u"Reorder stock; add, edit and delete items."_s},
    };
    return rights;
}

QString stockRightTitle()
{
    return titlesOf({stockRight});
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
        return cashierRights();
    return allRights();
}

const QList<Role> &userRoles()
{
    // A shift leader keeps the counter going; prices, items and deleted sales stay with the manager.
    static const QList<Role> roles = {
        {u"Cashier"_s, u"&Cashier"_s, cashierRights()},
        {u"Shift leader"_s, u"Shi&ft Leader"_s,
         cashierRights() + QStringList{u"InventoryReport"_s, u"InventoryUndo"_s}},
        {u"Manager"_s, u"&Manager"_s, allRights()},
    };
    return roles;
}

const Role *roleWith(const QStringList &rights)
{
    for (const Role &role : userRoles()) {
        if (without(role.rights, rights).isEmpty() && without(rights, role.rights).isEmpty())
            return &role;
    }
    return nullptr;
}

QString titlesOf(const QStringList &columns)
{
    QStringList titles;
    for (const Right &right : userRights()) {
        if (columns.contains(right.column))
            titles << right.title;
    }
    return titles.join(u", "_s);
}

QString changeWords(const QStringList &before, const QStringList &after)
{
    QStringList words;
    if (const QString given = titlesOf(without(after, before)); !given.isEmpty())
        words << u"Given: %1."_s.arg(given);
    if (const QString taken = titlesOf(without(before, after)); !taken.isEmpty())
        words << u"Taken away: %1."_s.arg(taken);
    return words.join(u' ');
}

} // namespace harrowby::app
