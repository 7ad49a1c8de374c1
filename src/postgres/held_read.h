// SPDX-License-Identifier: MIT
#pragma once

#include "postgres/server_result.h"

#include <harrowby/db_connection.h>

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <memory>

namespace harrowby::postgres {

/// A read whose rows nobody else changes before the one write that is computed from it has been done, in the texts that
/// are sent. The lock is the transaction's, taken with the read, in one round trip.
///
/// A row that is to be changed is locked itself. One that is to be added, because it was looked for and not found (or
/// found), is not there to be locked: whoever looks for the same waits for an advisory lock.
struct HeldRead
{
    QString select; ///< as the component has it
    HeldWrite write = HeldWrite::Change;
    std::shared_ptr<const PgResult> rows = nullptr; ///< once it has been read

    /// Begins the transaction. `serverSelect` is the SELECT in the server's dialect; its rows are the last result.
    [[nodiscard]] QByteArray reading(const QString &serverSelect) const;

    /// What the write that follows demands, also when it is sent again in a transaction of its own (Write::condition):
    /// that the row is as it was read,
    [[nodiscard]] QByteArray conditionOfUpdate(const QString &table, DbRowId row) const;
    /// or that as many rows are found as were. `counting` is the SELECT that counts them.
    [[nodiscard]] QByteArray conditionOfInsert(const QString &counting) const;

private:
    [[nodiscard]] QByteArray advisoryLock() const;
};

} // namespace harrowby::postgres
