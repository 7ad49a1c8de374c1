// SPDX-License-Identifier: MIT
#pragma once

#include "bench/raw_statements.h"

#include <QString>

#include <memory>
#include <optional>

namespace harrowby {
class DbConnection;
}

namespace harrowby::app {
class Records;
}

namespace harrowby::bench {

/// The store that a till is measured on: how it reaches it, and how a program without any layer does.
class MeasuredStore
{
public:
    MeasuredStore() = default;
    MeasuredStore(const MeasuredStore &) = delete;
    MeasuredStore &operator=(const MeasuredStore &) = delete;
    virtual ~MeasuredStore() = default;

    /// A connection of a till's, as the store program makes it. Must not outlive the store.
    [[nodiscard]] virtual std::shared_ptr<DbConnection> connect() = 0;
    /// The store program's own, over the session of the connection that was made last. Must not outlive the store.
    [[nodiscard]] virtual std::unique_ptr<app::Records> records() = 0;
    /// Runs the statements one after the other through the engine's own interface. Their time; below 0 when one fails.
    [[nodiscard]] virtual double rawMs(const RawStatements &statements) = 0;
    /// The search that finds a text anywhere.
    [[nodiscard]] virtual RawStatements search(const QString &text) const = 0;

    [[nodiscard]] virtual bool isServer() const = 0;
    /// What is waited for in which store; empty for a file.
    [[nodiscard]] virtual QString place() const { return {}; }
    /// Round trips to the server so far; empty when nobody counts them.
    [[nodiscard]] virtual std::optional<int> roundTrips() const { return {}; }
};

} // namespace harrowby::bench
