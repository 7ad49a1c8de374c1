// SPDX-License-Identifier: MIT
#pragma once

#include <harrowby/file_failure.h>

/// What the host is told of the files outside the database. The log is the caller's business.
namespace harrowby::FailureTelling {

void setHandler(FileFailureHandler handler);

void report(FileFailure::Kind kind, const QString &path, const QString &reason) noexcept;
/// A step of this kind has worked. Only the first one after a failure is passed on.
void reportSuccess(FileFailure::Kind kind, const QString &path) noexcept;

} // namespace harrowby::FailureTelling
