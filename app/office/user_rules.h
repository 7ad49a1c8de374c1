// SPDX-License-Identifier: MIT
#pragma once

#include "basic/result.h"

#include <QList>
#include <QString>
#include <QStringList>

/// What the till's login makes of a user. It compares the entry, trimmed and in capitals, between single quotes, with
/// SQLite's UPPER of what is stored, which knows only the letters A to Z.
namespace harrowby::app {

/// The user who may do everything, whatever the row's flags say.
[[nodiscard]] bool isAdministrator(const QString &name);

/// Whether the name can be taken for a new user, or why not, in words for a person.
[[nodiscard]] Result<void, QString> checkUserName(const QString &name);
/// What is stored for it: the entry as the login compares it.
[[nodiscard]] QString storedUserName(const QString &name);

/// True when there is an entry that the login compares as equal with this stored name or password.
[[nodiscard]] bool canBeTyped(const QString &stored);

struct Right
{
    QString column; ///< of the table Users
    QString title;
    QString words; ///< what it allows, in one line
};

/// The rights of a user. The first one, to use the till at all, is read more strictly than the others.
[[nodiscard]] const QList<Right> &userRights();

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

} // namespace harrowby::app
