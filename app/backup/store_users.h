// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QString>

namespace harrowby::app {

/// A program of this machine that has a store's file open.
struct StoreProgram
{
    qint64 process = 0;
    QString name; ///< in words: "the office", "a till", or the program's own name
};

/// Who else uses a store's file, as far as it can be seen. The programs are those of this user alone, unless the
/// superuser asks; who is allowed to is proven by SQLite's lock alone (store_locked.cpp).
struct StoreUsers
{
    QList<StoreProgram> programs;
    bool tillLives = false; ///< a till of this or another machine holds its lock in STORE-runs

    [[nodiscard]] bool isEmpty() const { return programs.isEmpty() && !tillLives; }
};

/// Everybody but this process.
[[nodiscard]] StoreUsers findStoreUsers(const QString &store);

/// "a till (harrowby, process 4711) and sqlite3 (process 4712)"; empty when there is nobody.
[[nodiscard]] QString storeUsersText(const StoreUsers &users);

} // namespace harrowby::app
