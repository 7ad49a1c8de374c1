// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/server_engine.h"
#include "basic/result.h"

#include <QString>

#include <memory>

namespace harrowby::app {

/// Opens the store at this server, or says why it cannot be, in words for a person. While it is waited for, a small
/// window says so; `options.waitHook` is called afterwards only.
[[nodiscard]] Result<std::unique_ptr<ServerStore>, QString> openServerStore(const QString &store,
                                                                            ServerOptions options);

/// Who may be logged in at this store.
enum class ServerUsers {
    There,
    MayBeAdded,     ///< nobody yet, and this machine may add the first one
    AddedElsewhere, ///< nobody yet, and it may not
    NotKnown,       ///< they could not be read, which has been told
};
[[nodiscard]] ServerUsers usersOf(Records &records);

/// Adds ADMINISTRATOR with all rights where nobody is there yet. False when somebody else has been quicker; the failure
/// when it could not be written.
[[nodiscard]] Records::Answer<bool> addFirstUser(Records &records, const QString &password);

} // namespace harrowby::app
