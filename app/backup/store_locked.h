// SPDX-License-Identifier: MIT
#pragma once

#include "basic/result.h"
#include "engine/database.h"

#include <QString>

#include <chrono>

namespace harrowby::app {

struct StoreUsers;

/// How often a restore tries to have a store for itself, and how long it pauses between two tries. Each try of
/// openStoreAlone() waits for no lock; what comes before, looking at the store, waits as wait_times.h says.
inline constexpr int lockTries = 10;
inline constexpr std::chrono::milliseconds lockPause{100};

/// Why a store cannot be had alone.
struct NotAlone
{
    QString text;           ///< for a person
    bool isDamaged = false; ///< SQLite cannot make sense of the file, or of its log
};

/// Opens a store for this program alone: its log is moved into the file and removed, and as long as the connection
/// lives nobody else can read or write it. Says in words for a person who has it open when it cannot be had after
/// lockTries; `what` is it that needs the store for itself. It is killed at any moment without harm; the next till
/// gives the store its log again.
[[nodiscard]] Result<SqliteDatabase, NotAlone> openStoreAlone(const QString &store,
                                                              const QString &what = QStringLiteral("a restore"));

struct DamagedStore
{
    SqliteDatabase database;
    bool isRuined = false; ///< SQLite finds no database in the file, and nothing can be read from it
};
/// The same for a store whose files are kept already, to write a whole one into it by the backup interface. The log of
/// a file in which SQLite finds no database is removed, as it would be replayed into what is written; until that is
/// committed, a kill leaves the bytes that were there. Others are kept from writing to such a file at once, and from
/// reading when the writing begins.
[[nodiscard]] Result<DamagedStore, QString> openDamagedStoreAlone(const QString &store);

/// Who has the store open, and what to do, for a person.
[[nodiscard]] QString storeInUse(const StoreUsers &users, const QString &what = QStringLiteral("a restore"));

} // namespace harrowby::app
