// SPDX-License-Identifier: MIT
#pragma once

#include "app/shop/file_identity.h"
#include "app/shop/store_handle.h"

#include <QByteArray>
#include <QString>

#include <optional>

struct sqlite3;

namespace harrowby::app {

/// Checks whether the file that a program has open is still the one that its path names, and unchanged but by SQLite. A
/// check costs a few system calls, reads no page and runs no statement. store_watch.cpp says which marks are compared:
/// device and inode of path, file and log; of the header what no statement changes; and, while the log's index counts
/// no checkpoint, the whole header, size and time. When checks run, and what a finding leads to, is StoreGuard's.
class StoreWatch
{
public:
    enum class Finding {
        Fine,
        PathGone,    ///< no file has the name any more
        PathTaken,   ///< another file has it
        Overwritten, ///< the same file, but written or truncated by others than SQLite
        LogGone,     ///< the log or its index is no longer beside it, or was replaced
    };

    /// Takes the file's present state as the right one. `path` is the name that the person gave.
    StoreWatch(sqlite3 *database, const QString &path);

    [[nodiscard]] Finding check();
    /// Whether the file that was opened, whatever its name now, was written or truncated by others than SQLite.
    [[nodiscard]] bool isWrittenByOthers() { return isForeign(contentNow()); }
    /// Called after each checkpoint of this process.
    void accept() { m_content = contentNow(); }
    /// Called once the connection has a write-ahead log open; later calls do nothing.
    void followLog();

    [[nodiscard]] bool hasLog() const { return m_hasLog; }
    [[nodiscard]] const FileId &file() const { return m_file; }
    [[nodiscard]] const FileId &log() const { return m_log; }
    [[nodiscard]] const FileId &logIndex() const { return m_logIndex; }
    /// Of the log beside the path; 0 when it is not there.
    [[nodiscard]] std::int64_t logSize() const;

    /// Where SQLite keeps the three.
    [[nodiscard]] const QByteArray &filePath() const { return m_filePath; }
    [[nodiscard]] QByteArray logPath() const { return m_filePath + "-wal"; }
    [[nodiscard]] QByteArray logIndexPath() const { return m_filePath + "-shm"; }

private:
    struct Content
    {
        FileFacts facts;
        QByteArray header;
        LogProgress log;
        bool isSettled = false; ///< no checkpoint ran meanwhile
    };

    [[nodiscard]] Finding checkPath(FileFacts &facts) const;
    [[nodiscard]] FileFacts factsOfOpened() const;
    [[nodiscard]] LogProgress logNow() const;
    [[nodiscard]] Content contentNow() const;
    [[nodiscard]] Content contentSince(const LogProgress &before, const FileFacts &facts) const;
    [[nodiscard]] bool isForeign(Content now);
    [[nodiscard]] bool bearsOurMarks(const QByteArray &header) const;
    [[nodiscard]] bool isUnchanged(const Content &now) const;

    StoreHandle m_handle;
    QByteArray m_path;
    QByteArray m_filePath;
    bool m_timeCounts;
    bool m_hasLog = false;
    FileId m_file, m_log, m_logIndex;
    Content m_content; ///< as of the last check without a finding
};

} // namespace harrowby::app
