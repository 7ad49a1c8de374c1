// SPDX-License-Identifier: MIT
#pragma once

#include <harrowby/db_connection.h>

#include <QString>

#include <memory>

namespace harrowby {

/// Keeps the database's write lock from one read to the one write that is computed from it, so that no other till's
/// change in between is lost (see DbConnection::hold()). Where the lock is refused, both run without it. Never throws.
class Hold
{
public:
    /// For the SELECT that is run next; empty when none is. Finishes the walks first that stand in the way: SQLite
    /// refuses the write lock while an open cursor reads an older snapshot.
    explicit Hold(const std::shared_ptr<DbConnection> &connection, const QString &select = {},
                  HeldWrite write = HeldWrite::Change) noexcept;
    Hold(const Hold &) = delete;
    Hold &operator=(const Hold &) = delete;
    /// Rolls back when settle() was not called.
    ~Hold();

    /// False where the lock was refused.
    [[nodiscard]] bool isHeld() const { return m_connection != nullptr; }
    /// Commits the write named here, or rolls back when the text is empty. Whether the write is committed now; true
    /// without a lock.
    bool settle(const QString &write) noexcept;

private:
    std::shared_ptr<DbConnection> m_connection; ///< null when nothing is held
};

} // namespace harrowby
