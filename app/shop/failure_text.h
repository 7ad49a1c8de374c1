// SPDX-License-Identifier: MIT
#pragma once

#include <harrowby/db_connection.h>

#include <harrowby/file_failure.h>

#include <QString>

/// What failed, in the words of the person at the till: first for statements, then for what lies outside the database.
namespace harrowby::app {

/// What has not been done, for example "The purchase was not recorded."
[[nodiscard]] QString failedWork(const DbFailure &failure);
/// The same of a write of which nobody can say yet whether it was done.
[[nodiscard]] QString doubtfulWork(const DbFailure &failure);
/// And once somebody can. `statement` as in DbFailure.
[[nodiscard]] QString settledWork(const QString &statement, bool isDone);
/// And once it is certain that nobody ever can.
[[nodiscard]] QString neverKnownWork(const QString &statement);
/// What to do once somebody can.
[[nodiscard]] QString settledAdvice(const QString &statement, bool isDone);
/// Why, in one short line.
[[nodiscard]] QString failureReason(const DbFailure &failure);
/// What to do about it.
[[nodiscard]] QString failureAdvice(const DbFailure &failure);
/// What has not been done, or of which nobody can say, why, and what to do, in a line each. `work` as failedWork().
[[nodiscard]] QString failureWords(const QString &work, const DbFailure &failure);

/// The same of a step outside the database.
[[nodiscard]] QString failedWork(const FileFailure &failure);
[[nodiscard]] QString failureAdvice(const FileFailure &failure);

/// One word for what such a failure is about.
[[nodiscard]] QString failureSubject(FileFailure::Kind kind);

/// A path that can be broken at its slashes, for lines that wrap.
[[nodiscard]] QString wrappingPath(QString path);

} // namespace harrowby::app
