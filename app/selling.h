// SPDX-License-Identifier: MIT
#pragma once

#include "app/cash/payments.h"
#include "app/records/records.h"

#include <harrowby/db_connection.h>

#include <functional>
#include <memory>

namespace harrowby::app {

struct CommandLine;
class FailureNotice;
class Till;

/// A store, opened for a till.
struct TillStore
{
    std::shared_ptr<DbConnection> connection; ///< the component's
    Records &records;
    CashStation cash;
    QString lockAdvice; ///< what to do when a run cannot show others that it lives
    /// Once the till is there, before the window opens.
    std::function<void(Till &)> furnish = {};
    /// Once the window is closed.
    std::function<void()> close = {};
};

/// The till, from the window's opening until it is closed: the exit code. The connection outlives it, without a failure
/// handler.
[[nodiscard]] int sellFrom(const TillStore &store, const CommandLine &line, FailureNotice &notice);

} // namespace harrowby::app
