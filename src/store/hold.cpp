// SPDX-License-Identifier: MIT
#include "store/hold.h"

#include "basic/logging.h"
#include "store/failure_reports.h"
#include "store/recordset.h"

#include <utility>

namespace harrowby {

Hold::Hold(const std::shared_ptr<DbConnection> &connection, const QString &select, HeldWrite write) noexcept
{
    finishWalksInTheWay(connection);
    try {
        if (connection && connection->holdFor(select, write))
            m_connection = connection;
    } catch (...) {
        qCWarning(lcStore, "Nothing could be held, so the next write goes on alone: the connection threw something");
    }
}

Hold::~Hold()
{
    settle({});
}

bool Hold::settle(const QString &write) noexcept
{
    const std::shared_ptr<DbConnection> connection = std::exchange(m_connection, nullptr);
    if (!connection)
        return true;
    bool kept = false;
    runReported(connection, DbFailure::Kind::Write, write, [&] { kept = connection->settle(write); });
    return kept;
}

} // namespace harrowby
