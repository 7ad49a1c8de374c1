// SPDX-License-Identifier: MIT
#include "platform/failure_telling.h"

#include "basic/logging.h"

#include <exception>
#include <set>
#include <utility>

namespace harrowby::FailureTelling {

namespace {

struct State
{
    FileFailureHandler handler;
    std::set<FileFailure::Kind> failing;
};

State &state()
{
    static State current;
    return current;
}

void tell(const FileFailure &failure)
{
    // A copy, as the handler may replace itself.
    if (const FileFailureHandler handler = state().handler)
        handler(failure);
}

} // namespace

void setHandler(FileFailureHandler handler)
{
    state().handler = std::move(handler);
}

void report(FileFailure::Kind kind, const QString &path, const QString &reason) noexcept
try {
    state().failing.insert(kind);
    tell({kind, path, reason, false});
} catch (const std::exception &error) {
    qCWarning(lcWindow, "The host could not be told of a failure: %s", error.what());
} catch (...) {
    qCWarning(lcWindow, "The host could not be told of a failure");
}

void reportSuccess(FileFailure::Kind kind, const QString &path) noexcept
try {
    if (state().failing.erase(kind) > 0)
        tell({kind, path, {}, true});
} catch (const std::exception &error) {
    qCWarning(lcWindow, "The host could not be told of the end of a failure: %s", error.what());
} catch (...) {
    qCWarning(lcWindow, "The host could not be told of the end of a failure");
}

} // namespace harrowby::FailureTelling
