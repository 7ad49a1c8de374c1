// SPDX-License-Identifier: MIT
#pragma once

#include "app/copy/copied_tables.h"
#include "app/records/records.h"

#include <QString>

#include <functional>
#include <optional>

namespace harrowby::app {

class ServerEngine;

/// What a server's columns can hold, and how it holds it.
class ColumnRules
{
public:
    using Unstorable = std::function<std::optional<QString>(const QString &table, const DbAssignments &values)>;
    using Converted = std::function<RecordValue(const QString &table, const QString &column, const RecordValue &value)>;

    /// By the engine that must outlive them.
    explicit ColumnRules(const ServerEngine &engine);
    ColumnRules(Unstorable unstorable, Converted converted);

    /// Why a server cannot hold this row, whose values are those of the table's columns; nothing when it can.
    [[nodiscard]] std::optional<QString> unfit(const CopiedTable &table, const RecordRow &row) const;
    /// The row as a server holds it, from whichever store it comes: so rows of both can be compared. Precondition: it
    /// is fit.
    [[nodiscard]] RecordRow asHeld(const CopiedTable &table, RecordRow row) const;

private:
    [[nodiscard]] std::optional<QString> unfitValue(const CopiedColumn &column, const RecordValue &value) const;

    Unstorable m_unstorable;
    Converted m_converted;
};

} // namespace harrowby::app
