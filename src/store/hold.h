// SPDX-License-Identifier: MIT
#pragma once

#include <harrowby/db_connection.h>

#include <QString>

#include <memory>

namespace harrowby {

/// Holds one read and the one write that is computed from it together, so that no other till's change is lost in
/// between (see DbConnection::hold()). Where that cannot be, both go on alone. Never throws.
class Hold
{
public:
    /// Finishes the walks first: a hold that a walk's old view stands in the way of would be refused.
    explicit Hold(const std::shared_ptr<DbConnection> &connection) noexcept;
    Hold(const Hold &) = delete;
    Hold &operator=(const Hold &) = delete;
    /// Takes back what was not settled.
    ~Hold();

    /// Ends it, with the write that was done, or an empty text when it failed. Whether what was written is kept now.
    bool settle(const QString &write) noexcept;

private:
    std::shared_ptr<DbConnection> m_connection; ///< null when nothing is held
};

} // namespace harrowby
