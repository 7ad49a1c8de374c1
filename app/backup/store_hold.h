// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <optional>

namespace harrowby::app {

/// Keeps everybody out of a store's file by the lock that SQLite takes to write, also where SQLite cannot read the
/// file. This process, too: it opens the store through SQLite only when the hold is gone, as its closing a file that
/// SQLite has open would drop SQLite's own locks.
class StoreHold
{
public:
    StoreHold() = default;
    ~StoreHold() { release(); }
    StoreHold(const StoreHold &) = delete;
    StoreHold &operator=(const StoreHold &) = delete;

    /// Why it cannot be had, for a person; empty when it is held. Tries as often as openStoreAlone(), see
    /// store_locked.h.
    [[nodiscard]] std::optional<QString> take(const QString &store);
    void release();

private:
    int m_file = -1;
};

} // namespace harrowby::app
