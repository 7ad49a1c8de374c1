// SPDX-License-Identifier: MIT
#pragma once

#include "engine/database.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace harrowby::app {

struct StoreUser
{
    qint64 row = 0;
    QString name; ///< as it is stored
    QString type; ///< as it is stored; empty for none
    bool hasType = false;
    QStringList rights; ///< columns of those that the till would give
    bool nameCanBeTyped = false;
    bool passwordCanBeTyped = false;
};

struct NewUser
{
    QString name;
    QString password;
    QString type;
    QStringList rights; ///< columns
};

/// Why the user cannot log in at the till, in a few words; empty when nothing is in the way.
[[nodiscard]] QString loginObstacle(const StoreUser &user);

/// The table Users. What it stores is what the till's login finds again; columns that it does not know stay as they
/// are. Every function returns, when it fails, what happened in words for a person, and then nothing has changed.
class UsersTable
{
public:
    using Problem = std::optional<QString>;

    struct Listing
    {
        QList<StoreUser> users; ///< by name
        Problem problem;        ///< set when reading failed; `users` are then those before the failure
    };

    /// The database must outlive it.
    explicit UsersTable(sqlite3 *database) : m_database(database) {}

    [[nodiscard]] Listing list() const;
    /// Refuses a name that the store has already under any capitals, and what the login would not find.
    [[nodiscard]] Problem add(const NewUser &user) const;
    [[nodiscard]] Problem setPassword(const StoreUser &user, const QString &password) const;
    /// `column` is one of userRights(). ADMINISTRATOR has all rights and keeps them.
    [[nodiscard]] Problem setRight(const StoreUser &user, const QString &column, bool on) const;
    [[nodiscard]] Problem setType(const StoreUser &user, const QString &type) const;

private:
    [[nodiscard]] Problem addUnlessTaken(const NewUser &user) const;
    [[nodiscard]] Problem change(const StoreUser &user, const QString &column, const DbValue &value) const;

    sqlite3 *m_database;
};

/// The words for an error of the engine: `what` was not done, why, and what to do.
[[nodiscard]] QString engineWords(const QString &what, const SqlError &error);

} // namespace harrowby::app
