// SPDX-License-Identifier: MIT
#include <harrowby/db_connection.h>

#include "basic/logging.h"

#include <utility>

namespace harrowby {

DbCursor::~DbCursor() = default;
DbConnection::~DbConnection() = default;

void DbConnection::setFailureHandler(FailureHandler handler)
{
    m_failureHandler = std::move(handler);
}

void DbConnection::reportFailure(const DbFailure &failure) const noexcept
{
    try {
        qCWarning(lcStore).noquote() << failure.reason << failure.engineCode << failure.statement;
        // A copy, as the handler may replace itself or drop the host's last reference to this connection.
        if (const FailureHandler handler = m_failureHandler)
            handler(failure);
    } catch (...) {
        // Whatever the host's handler does, the statement's caller goes on.
    }
}

} // namespace harrowby
