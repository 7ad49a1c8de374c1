// SPDX-License-Identifier: MIT
#pragma once

#include "app/catalogue/import_shelf.h"

#include <optional>

namespace harrowby::app {

/// A server's columns hold texts or figures, and not everything of either, whereas a store file holds whatever it is
/// given. So what a server would refuse in the middle of an import is refused in its preview.
class StorableRows
{
public:
    /// The records must outlive it.
    StorableRows(const Records &records, ImportKind kind) : m_records(records), m_kind(kind) {}

    /// Refuses such rows, with all that comes with them; the values of the others are as the columns will hold them.
    void settle(StagedPiece &piece) const;
    /// Whether a category of this name can be stored.
    [[nodiscard]] bool holdsCategory(const QString &name) const;

private:
    [[nodiscard]] std::optional<QString> settleItem(StagedRow &row) const;
    [[nodiscard]] std::optional<QString> settleCode(StagedCode &code) const;
    [[nodiscard]] std::optional<QString> settleCategory(StagedCategory &category) const;

    const Records &m_records;
    ImportKind m_kind;
};

} // namespace harrowby::app
