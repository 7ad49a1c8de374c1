// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

#include <array>
#include <cstdint>
#include <optional>

struct sqlite3;

namespace harrowby::app {

/// The checkpoint fields of the wal-index. A checkpoint writes them before and after it changes the file.
struct LogProgress
{
    std::array<std::uint32_t, 2> salts = {}; ///< new whenever the log is restarted
    std::uint32_t moved = 0;
    std::uint32_t movedOrTried = 0;
    bool operator==(const LogProgress &) const = default;
    [[nodiscard]] bool isMoving() const { return moved != movedOrTried; }
};

/// An open store file, seen through the handle that SQLite itself has on it.
class StoreHandle
{
public:
    explicit StoreHandle(sqlite3 *database) : m_database(database) {}

    /// SQLITE_FCNTL_HAS_MOVED: whether the file no longer has the name under which it was opened.
    [[nodiscard]] bool hasMoved() const;
    /// The first 100 bytes; empty when the file has not as many or cannot be read.
    [[nodiscard]] QByteArray header() const;
    /// Only for a connection that has its write-ahead log open.
    [[nodiscard]] std::optional<LogProgress> logProgress() const;
    /// Whether closing leaves file and log as they are, instead of moving the log into the file and removing it.
    void leaveAtClosing(bool leave) const;

private:
    sqlite3 *m_database;
};

} // namespace harrowby::app
