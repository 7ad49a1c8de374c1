// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <sys/types.h>

#include <cstdint>
#include <optional>

/// FileId and FileFacts: identity, size and time of the file behind a name. file_facts.h judges a path instead. From
/// stat(): opening and closing a store file a second time within one process would drop SQLite's POSIX locks.
namespace harrowby::app {

struct FileId
{
    dev_t device = 0;
    ino_t inode = 0;
    bool operator==(const FileId &) const = default;
};

struct FileFacts
{
    FileId id;
    std::int64_t size = 0;     ///< bytes
    std::int64_t modified = 0; ///< nanoseconds since 1970
    bool operator==(const FileFacts &) const = default;
};

/// Empty when nothing of that name can be seen. Links are followed.
[[nodiscard]] std::optional<FileFacts> factsOf(const QByteArray &path);

/// A file that this process has open.
struct OpenFile
{
    FileFacts facts;
    QString name; ///< its present path; empty when it has no name any more
};
/// Empty when this process has no such file open, or the system does not tell.
[[nodiscard]] std::optional<OpenFile> openFileOf(const FileId &id);

/// False where the time of the last change may come late or not at all: on a network folder, for example.
[[nodiscard]] bool tellsChangesAtOnce(const QByteArray &path);

} // namespace harrowby::app
