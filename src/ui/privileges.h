// SPDX-License-Identifier: MIT
#pragma once

namespace harrowby {

class DbRecordset;

/// What a user may do.
struct Privileges
{
    bool CanSell = false;
    bool CanReport = false;
    bool CanUndo = false;
    bool CanDelete = false;
    bool CanSettings = false;
    bool CanReorder = false;
    bool CanEditStock = false; ///< Intended: a right of its own from the same column as CanReorder

    [[nodiscard]] static Privileges everyRight();
    /// From the user's row. A column that cannot be read gives no right.
    [[nodiscard]] static Privileges ofRow(DbRecordset &user);
};

} // namespace harrowby
