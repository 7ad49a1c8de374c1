// SPDX-License-Identifier: MIT
#include "host/inv_basic.h"

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
    slot() = std::move(connection);
}

} // namespace harrowby::InvBasic
