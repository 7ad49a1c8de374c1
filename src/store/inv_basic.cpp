// SPDX-License-Identifier: MIT
#include "store/inv_basic.h"

#include "store/recordset.h"

#include <utility>

namespace harrowby::InvBasic {

namespace {

std::shared_ptr<DbConnection> &slot()
{
    static std::shared_ptr<DbConnection> held;
    return held;
}

} // namespace

const std::shared_ptr<DbConnection> &connection()
{
    return slot();
}

void setConnection(std::shared_ptr<DbConnection> connection)
{
    if (connection != slot())
        finishWalks(slot()); // who writes from now on knows the other connection alone
    slot() = std::move(connection);
}

} // namespace harrowby::InvBasic
