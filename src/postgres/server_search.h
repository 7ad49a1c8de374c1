// SPDX-License-Identifier: MIT
#pragma once

#include "basic/result.h"
#include "postgres/server_link.h"
#include "postgres/server_target.h"
#include "postgres/server_waits.h"

#include <QUuid>

#include <memory>

namespace harrowby::postgres {

struct FoundServer
{
    PgServer server;
    QUuid store; ///< null: it did not tell, or was not asked
    std::shared_ptr<ServerLink> link;
};

/// Asks all hosts of the target at once, and connects to the one that a store is on.
[[nodiscard]] Result<FoundServer, PgError> findServer(const PgTarget &target, const PgWaits &waits);

} // namespace harrowby::postgres
