// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// A store's address is one text: the absolute path of a file, or a server's target, "postgresql://…" or
/// "service=NAME", which is completed by libpq's own files.
namespace harrowby {

/// Whether this is a server's target. Everything else is a file's path.
[[nodiscard]] bool isServer(const QString &store);

/// The address as a person reads it: a file's path as it is, a server's target without a password.
[[nodiscard]] QString storeWords(const QString &store);

} // namespace harrowby
