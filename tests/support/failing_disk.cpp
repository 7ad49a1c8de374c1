// SPDX-License-Identifier: MIT
#include "tests/support/failing_disk.h"

#include <array>
#include <cerrno>
#include <climits>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <string>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace harrowby::test::FailingDisk {

namespace {

// Used before the first constructor and after the last destructor: a leak checker opens files then.
constinit std::array<char, PATH_MAX> folder{};
constinit std::size_t folderSize = 0;
std::string first;
int countdown = 0;
int failed = 0;
int failureError = 0;
Mode failureMode = Mode::Once;

bool isBelow(const char *path)
{
    return folderSize > 0 && path != nullptr && std::strncmp(path, folder.data(), folderSize) == 0;
}

bool failsAt(const char *operation, const char *path)
{
    const bool goesOn = failed > 0 && failureMode == Mode::Forever;
    if (!goesOn && (countdown == 0 || --countdown > 0))
        return false;
    if (failed++ == 0)
        first = std::string(operation) + ' ' + path;
    errno = failureError;
    return true;
}

bool fails(const char *operation, const char *path)
{
    return isBelow(path) && (countdown > 0 || failed > 0) && failsAt(operation, path);
}

bool fails(const char *operation, int file)
{
    if (countdown == 0 && failed == 0)
        return false;
    std::array<char, PATH_MAX> path{};
    std::array<char, 32> link{};
    std::snprintf(link.data(), link.size(), "/proc/self/fd/%d", file);
    return ::readlink(link.data(), path.data(), path.size() - 1) > 0 && fails(operation, path.data());
}

template <typename... Arguments>
int call(long number, Arguments... arguments)
{
    return static_cast<int>(::syscall(number, arguments...));
}

/// Whether the call has a third argument.
bool makes(int flags)
{
    return (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
}

int openFile(const char *path, int flags, mode_t mode)
{
    return fails("open", path) ? -1 : call(SYS_openat, AT_FDCWD, path, flags, mode);
}

ssize_t writeFile(int file, const void *bytes, std::size_t size)
{
    return fails("write", file) ? -1 : ::syscall(SYS_write, file, bytes, size);
}

ssize_t writeFileAt(int file, const void *bytes, std::size_t size, off_t offset)
{
    return fails("write", file) ? -1 : ::syscall(SYS_pwrite64, file, bytes, size, offset);
}

int syncFile(int file)
{
    return fails("sync", file) ? -1 : 0;
}

int cutFile(int file, off_t size)
{
    return fails("cut", file) ? -1 : call(SYS_ftruncate, file, size);
}

} // namespace

void mount(const QString &path)
{
    const std::string name = path.toStdString() + '/';
    folderSize = name.copy(folder.data(), folder.size());
}

void failAt(int operation, Mode mode, int error)
{
    countdown = operation;
    failed = 0;
    first.clear();
    failureMode = mode;
    failureError = error;
}

int failures()
{
    return failed;
}

QString firstFailure()
{
    return QString::fromStdString(first);
}

} // namespace harrowby::test::FailingDisk

// In place of the C library's, for this program and everything that it has loaded.

using namespace harrowby::test;

#pragma GCC visibility push(default)

extern "C" int open(const char *path, int flags, ...)
{
    va_list rest;
    va_start(rest, flags);
    const mode_t mode = FailingDisk::makes(flags) ? va_arg(rest, mode_t) : 0;
    va_end(rest);
    return FailingDisk::openFile(path, flags, mode);
}

extern "C" int open64(const char *path, int flags, ...)
{
    va_list rest;
    va_start(rest, flags);
    const mode_t mode = FailingDisk::makes(flags) ? va_arg(rest, mode_t) : 0;
    va_end(rest);
    return FailingDisk::openFile(path, flags, mode);
}

extern "C" ssize_t write(int file, const void *bytes, size_t size)
{
    return FailingDisk::writeFile(file, bytes, size);
}

extern "C" ssize_t pwrite(int file, const void *bytes, size_t size, off_t offset)
{
    return FailingDisk::writeFileAt(file, bytes, size, offset);
}

extern "C" ssize_t pwrite64(int file, const void *bytes, size_t size, off64_t offset)
{
    return FailingDisk::writeFileAt(file, bytes, size, offset);
}

extern "C" int fsync(int file)
{
    return FailingDisk::syncFile(file);
}

extern "C" int fdatasync(int file)
{
    return FailingDisk::syncFile(file);
}

extern "C" int ftruncate(int file, off_t size) noexcept
{
    return FailingDisk::cutFile(file, size);
}

extern "C" int ftruncate64(int file, off64_t size) noexcept
{
    return FailingDisk::cutFile(file, size);
}

extern "C" int rename(const char *from, const char *to) noexcept
{
    return FailingDisk::fails("rename", to) ? -1 : FailingDisk::call(SYS_rename, from, to);
}

extern "C" int renameat2(int fromFolder, const char *from, int toFolder, const char *to, unsigned flags) noexcept
{
    return FailingDisk::fails("rename", to) ? -1
                                            : FailingDisk::call(SYS_renameat2, fromFolder, from, toFolder, to, flags);
}

extern "C" int link(const char *from, const char *to) noexcept
{
    return FailingDisk::fails("link", to) ? -1 : FailingDisk::call(SYS_link, from, to);
}

extern "C" int linkat(int fromFolder, const char *from, int toFolder, const char *to, int flags) noexcept
{
    return FailingDisk::fails("link", to) ? -1 : FailingDisk::call(SYS_linkat, fromFolder, from, toFolder, to, flags);
}

extern "C" int mkdir(const char *path, mode_t mode) noexcept
{
    return FailingDisk::fails("mkdir", path) ? -1 : FailingDisk::call(SYS_mkdir, path, mode);
}
#pragma GCC visibility pop
