// SPDX-License-Identifier: MIT
// In place of server_shop.cpp and server_session.cpp, where there is no libpq.
#include "tests/doubles/server_shop.h"

#include <harrowby/db_connection.h>

namespace harrowby::test {

struct ServerSession::Connection
{
};

bool shopsAreOnAServer()
{
    return false;
}

bool isOnServer(const QString &)
{
    return false;
}

std::shared_ptr<DbConnection> connectToServer(const QString &, const QString &)
{
    return nullptr;
}

ServerShop::ServerShop() = default;
ServerShop::~ServerShop() = default;

ServerSession::ServerSession(const QString &) {}
ServerSession::~ServerSession() = default;

bool ServerSession::run(const QString &)
{
    return false;
}

std::optional<QStringList> ServerSession::rows(const QString &, Columns)
{
    return {};
}

bool ServerSession::hasRefusedAValue() const
{
    return false;
}

} // namespace harrowby::test
