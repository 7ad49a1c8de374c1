// SPDX-License-Identifier: MIT
#pragma once

#include <QLatin1StringView>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

/// What a user may do. Which names and passwords the login finds again: app/shop/password_rules.h.
namespace harrowby::app {

/// The user who may do everything, whatever the row's flags say.
[[nodiscard]] bool isAdministrator(const QString &name);

/// Why a user's rights cannot be changed, or why one cannot be of a type, in words for a person; nothing when they can.
[[nodiscard]] std::optional<QString> lockedRightsWords(const QString &name);
[[nodiscard]] std::optional<QString> noTypeWords(const QString &name, const QString &type);

struct Right
{
    QString column; ///< of the table Users
    QString title;
    QString words; ///< what it allows, in one line
};

/// The rights of a user. The first one, to use the till at all, is read more strictly than the others.
[[nodiscard]] const QList<Right> &userRights();
/// The column of the one that opens the pages about stock, and its title: "Stock".
inline constexpr QLatin1StringView stockRight("InventoryReorder");
[[nodiscard]] QString stockRightTitle();

struct UserType
{
    QString name; ///< as it is stored
    QString words;
};

/// The types to choose from; a host may have stored others.
[[nodiscard]] const QList<UserType> &userTypes();
/// Who is of this type can never log in at the till.
inline constexpr QLatin1StringView viewerType("VIEWER");

/// The columns of the rights that a new user of this type is given.
[[nodiscard]] QStringList usualRights(const QString &type);

/// What somebody does in the shop, and the rights for it: exactly these.
struct Role
{
    QString name;    ///< "Shift leader"
    QString caption; ///< of its button
    QStringList rights;
};

[[nodiscard]] const QList<Role> &userRoles();
/// The role whose rights are exactly these; null when there is none.
[[nodiscard]] const Role *roleWith(const QStringList &rights);

/// The titles of rights, in the order of userRights(): "Sales report, Undo".
[[nodiscard]] QString titlesOf(const QStringList &columns);

/// "Given: Sales report, Undo. Taken away: Stock."; empty when nothing changes.
[[nodiscard]] QString changeWords(const QStringList &before, const QStringList &after);

} // namespace harrowby::app
