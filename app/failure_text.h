// SPDX-License-Identifier: MIT
#pragma once

#include <harrowby/db_connection.h>

#include <QString>

/// A failed statement in the words of the person at the till.
namespace harrowby::app {

/// What has not been done, for example "The purchase was not recorded."
[[nodiscard]] QString failedWork(const DbFailure &failure);
/// Why, in one short line.
[[nodiscard]] QString failureReason(const DbFailure &failure);
/// What to do about it.
[[nodiscard]] QString failureAdvice(const DbFailure &failure);

} // namespace harrowby::app
