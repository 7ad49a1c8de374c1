// SPDX-License-Identifier: MIT
#include "tests/store/faulty_vfs.h"

#include <sqlite3.h>

namespace harrowby::FaultyVfs {

namespace {

int countdown = 0;
int failed = 0;
Mode failureMode = Mode::Once;

bool failsNow()
{
    if (failed > 0 && failureMode == Mode::Forever && countdown == 0) {
        ++failed;
        return true;
    }
    if (countdown == 0 || --countdown > 0)
        return false;
    ++failed;
    return true;
}

/// SQLite allocates szOsFile bytes: this struct, followed by the real VFS's file.
struct File
{
    sqlite3_file base;
    sqlite3_file *real;
};

sqlite3_file *real(sqlite3_file *file)
{
    return reinterpret_cast<File *>(file)->real;
}

int close(sqlite3_file *file)
{
    return real(file)->pMethods->xClose(real(file));
}

int read(sqlite3_file *file, void *buffer, int amount, sqlite3_int64 offset)
{
    return real(file)->pMethods->xRead(real(file), buffer, amount, offset);
}

int write(sqlite3_file *file, const void *buffer, int amount, sqlite3_int64 offset)
{
    return failsNow() ? SQLITE_FULL : real(file)->pMethods->xWrite(real(file), buffer, amount, offset);
}

int truncate(sqlite3_file *file, sqlite3_int64 size)
{
    return failsNow() ? SQLITE_IOERR_TRUNCATE : real(file)->pMethods->xTruncate(real(file), size);
}

/// A sync that is not to fail does nothing: no test survives a power cut.
int sync(sqlite3_file *, int)
{
    return failsNow() ? SQLITE_IOERR_FSYNC : SQLITE_OK;
}

int fileSize(sqlite3_file *file, sqlite3_int64 *size)
{
    return real(file)->pMethods->xFileSize(real(file), size);
}

int lock(sqlite3_file *file, int level)
{
    return real(file)->pMethods->xLock(real(file), level);
}

int unlock(sqlite3_file *file, int level)
{
    return real(file)->pMethods->xUnlock(real(file), level);
}

int checkReservedLock(sqlite3_file *file, int *result)
{
    return real(file)->pMethods->xCheckReservedLock(real(file), result);
}

int fileControl(sqlite3_file *file, int operation, void *argument)
{
    return real(file)->pMethods->xFileControl(real(file), operation, argument);
}

int sectorSize(sqlite3_file *file)
{
    return real(file)->pMethods->xSectorSize(real(file));
}

int deviceCharacteristics(sqlite3_file *file)
{
    return real(file)->pMethods->xDeviceCharacteristics(real(file));
}

int shmMap(sqlite3_file *file, int page, int size, int extend, void volatile **memory)
{
    return real(file)->pMethods->xShmMap(real(file), page, size, extend, memory);
}

int shmLock(sqlite3_file *file, int offset, int count, int flags)
{
    return real(file)->pMethods->xShmLock(real(file), offset, count, flags);
}

void shmBarrier(sqlite3_file *file)
{
    real(file)->pMethods->xShmBarrier(real(file));
}

int shmUnmap(sqlite3_file *file, int remove)
{
    return real(file)->pMethods->xShmUnmap(real(file), remove);
}

const sqlite3_io_methods methods = {
    2,
    close,
    read,
    write,
    truncate,
    sync,
    fileSize,
    lock,
    unlock,
    checkReservedLock,
    fileControl,
    sectorSize,
    deviceCharacteristics,
    shmMap,
    shmLock,
    shmBarrier,
    shmUnmap,
    nullptr,
    nullptr,
};

sqlite3_vfs *usual()
{
    static sqlite3_vfs *const found = sqlite3_vfs_find("unix");
    return found;
}

int open(sqlite3_vfs *, const char *path, sqlite3_file *file, int flags, int *outFlags)
{
    auto *shim = reinterpret_cast<File *>(file);
    shim->base.pMethods = nullptr;
    shim->real = reinterpret_cast<sqlite3_file *>(shim + 1);
    const int code = usual()->xOpen(usual(), path, shim->real, flags, outFlags);
    if (shim->real->pMethods)
        shim->base.pMethods = &methods;
    return code;
}

sqlite3_vfs makeVfs()
{
    sqlite3_vfs vfs = *usual();
    vfs.zName = "faulty";
    vfs.szOsFile += static_cast<int>(sizeof(File));
    vfs.pNext = nullptr;
    vfs.xOpen = open;
    return vfs;
}

} // namespace

const char *name()
{
    static sqlite3_vfs vfs = makeVfs();
    static const int registered = sqlite3_vfs_register(&vfs, 0);
    return registered == SQLITE_OK ? vfs.zName : nullptr;
}

void failAt(int operation, Mode mode)
{
    countdown = operation;
    failed = 0;
    failureMode = mode;
}

int failures()
{
    return failed;
}

} // namespace harrowby::FaultyVfs
