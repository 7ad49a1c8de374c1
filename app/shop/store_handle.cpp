// SPDX-License-Identifier: MIT
#include "app/shop/store_handle.h"

#include <sqlite3.h>

#include <cstddef>
#include <cstring>

namespace harrowby::app {

namespace {

constexpr int bytesOfHeader = 100;

sqlite3_file *fileOf(sqlite3 *database)
{
    sqlite3_file *file = nullptr;
    const int code = sqlite3_file_control(database, "main", SQLITE_FCNTL_FILE_POINTER, &file);
    return code == SQLITE_OK && file != nullptr && file->pMethods != nullptr ? file : nullptr;
}

std::uint32_t numberAt(const volatile unsigned char *index, std::size_t offset)
{
    return *reinterpret_cast<const volatile std::uint32_t *>(index + offset);
}

} // namespace

bool StoreHandle::hasMoved() const
{
    int moved = 0;
    return sqlite3_file_control(m_database, "main", SQLITE_FCNTL_HAS_MOVED, &moved) == SQLITE_OK && moved != 0;
}

QByteArray StoreHandle::header() const
{
    sqlite3_file *file = fileOf(m_database);
    QByteArray bytes(bytesOfHeader, '\0');
    if (file == nullptr || file->pMethods->xRead(file, bytes.data(), bytesOfHeader, 0) != SQLITE_OK)
        return {};
    return bytes;
}

std::optional<LogProgress> StoreHandle::logProgress() const
{
    // Offsets and size as in SQLite's documented wal-index format.
    constexpr int regionSize = 32768;
    constexpr std::size_t salt = 32;
    constexpr std::size_t moved = 96;
    constexpr std::size_t movedOrTried = 128;
    sqlite3_file *file = fileOf(m_database);
    if (file == nullptr || file->pMethods->iVersion < 2)
        return {};
    volatile void *region = nullptr;
    if (file->pMethods->xShmMap(file, 0, regionSize, 0, &region) != SQLITE_OK || region == nullptr)
        return {};
    const auto *index = static_cast<const volatile unsigned char *>(region);
    return LogProgress{
        {numberAt(index, salt), numberAt(index, salt + 4)}, numberAt(index, moved), numberAt(index, movedOrTried)};
}

void StoreHandle::leaveAtClosing(bool leave) const
{
    int keepsLog = leave ? 1 : 0;
    sqlite3_db_config(m_database, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, keepsLog, nullptr);
    sqlite3_file_control(m_database, "main", SQLITE_FCNTL_PERSIST_WAL, &keepsLog);
}

} // namespace harrowby::app
