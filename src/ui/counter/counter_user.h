// SPDX-License-Identifier: MIT
#pragma once

#include "ui/form_state.h"

#include <harrowby/counter.h>

namespace harrowby {

/// Who is logged in, as a host is told of it.
[[nodiscard]] inline CounterUser counterUser(const Login &login)
{
    const Privileges &rights = login.rights;
    return {login.LoggedUser,
            {rights.CanSell, rights.CanEditStock, rights.CanReorder, rights.CanUndo, rights.CanDelete,
             rights.CanSettings, rights.CanReport}};
}

} // namespace harrowby
