// SPDX-License-Identifier: MIT
#pragma once

#include "app/office/user_rules.h"
#include "app/records/deeds.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>
#include <utility>

namespace harrowby::app {

class DoorWatch;

struct StoreUser
{
    qint64 row = 0;
    QString name; ///< as it is stored
    QString type; ///< as it is stored; empty for none
    bool hasType = false;
    QStringList rights; ///< columns of those that the till would give
    bool nameCanBeTyped = false;
    bool passwordCanBeTyped = false;
    QByteArray passwordMark; ///< equal for equal passwords
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
/// What changes a user is refused when another program has changed the same of that user since it was read. Each
/// change is stored together with the deed that tells it.
class UsersTable
{
public:
    using Problem = std::optional<QString>;

    struct Listing
    {
        QList<StoreUser> users; ///< by name
        Problem problem;        ///< set when reading failed; `users` are then those before the failure
    };

    /// In the records that the deeds are kept in. Nothing is written for who would not be let in any more.
    explicit UsersTable(SignedDeeds deeds, std::shared_ptr<DoorWatch> door = {}) :
        m_deeds(std::move(deeds)), m_door(std::move(door))
    {
    }

    [[nodiscard]] Listing list() const;
    /// Refuses a name that the store has already under any capitals, and what the login would not find.
    [[nodiscard]] Problem add(const NewUser &user) const;
    [[nodiscard]] Problem setPassword(const StoreUser &user, const QString &password) const;
    /// `column` is one of userRights(). ADMINISTRATOR has all rights and keeps them.
    [[nodiscard]] Problem setRight(const StoreUser &user, const QString &column, bool on) const;
    [[nodiscard]] Problem setType(const StoreUser &user, const QString &type) const;
    /// All seven at once. ADMINISTRATOR has all rights and keeps them.
    [[nodiscard]] Problem setRole(const StoreUser &user, const Role &role) const;

private:
    using Columns = QList<std::pair<QString, DbValue>>;
    /// What is to be stored for a user, who is as the store has it now; or why it is not.
    using Plan = std::function<Result<Columns, QString>(const StoreUser &now, const QList<DbValue> &flags)>;

    [[nodiscard]] Problem addUnlessTaken(const NewUser &user) const;
    [[nodiscard]] Problem change(const StoreUser &user, const Plan &plan, const RecordStatement &told) const;
    [[nodiscard]] Problem changeLocked(const StoreUser &user, const Plan &plan, const RecordStatement &told) const;
    [[nodiscard]] Problem store(const StoreUser &user, const Columns &columns) const;
    [[nodiscard]] Problem write(const RecordStatement &statement, const QString &notDone) const;
    /// Runs the work in one transaction that is undone when the work has a problem.
    [[nodiscard]] Problem together(const QString &notDone, const std::function<Problem()> &work) const;

    SignedDeeds m_deeds;
    std::shared_ptr<DoorWatch> m_door;
};

} // namespace harrowby::app
