// SPDX-License-Identifier: MIT
// Loaded into a private server before the C library (LD_PRELOAD): while the file "disk-is-full" is in its data folder,
// no file below that can grow, as on a full disk. What lies in a file already can be written again.

#include <cerrno>
#include <cstdio>
#include <cstring>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

namespace {

template <typename Function>
Function *next(Function *, const char *name)
{
    return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, name));
}

/// The server's processes work in their data folder.
bool isFull()
{
    return access("disk-is-full", F_OK) == 0;
}

bool liesInDataFolder(int file)
{
    char link[32];
    char path[4096];
    char folder[4096];
    std::snprintf(link, sizeof link, "/proc/self/fd/%d", file);
    const ssize_t length = readlink(link, path, sizeof path - 1);
    if (length <= 0 || getcwd(folder, sizeof folder) == nullptr)
        return false;
    path[length] = '\0';
    return std::strncmp(path, folder, std::strlen(folder)) == 0;
}

bool isRefused(int file, off_t end)
{
    struct stat now = {};
    if (!isFull() || fstat(file, &now) != 0 || !S_ISREG(now.st_mode) || end <= now.st_size || !liesInDataFolder(file))
        return false;
    errno = ENOSPC;
    return true;
}

off_t bytesOf(const iovec *parts, int count)
{
    off_t bytes = 0;
    for (int i = 0; i < count; ++i)
        bytes += static_cast<off_t>(parts[i].iov_len);
    return bytes;
}

} // namespace

#pragma GCC visibility push(default)
extern "C" {

ssize_t write(int file, const void *data, size_t size)
{
    static auto *const real = next(&::write, "write");
    const int before = errno;
    const off_t place = lseek(file, 0, SEEK_CUR);
    if (place >= 0 && isRefused(file, place + static_cast<off_t>(size)))
        return -1;
    errno = before;
    return real(file, data, size);
}

ssize_t pwrite(int file, const void *data, size_t size, off_t place)
{
    static auto *const real = next(&::pwrite, "pwrite");
    return isRefused(file, place + static_cast<off_t>(size)) ? -1 : real(file, data, size, place);
}

ssize_t pwrite64(int file, const void *data, size_t size, off64_t place)
{
    return pwrite(file, data, size, place);
}

ssize_t pwritev(int file, const iovec *parts, int count, off_t place)
{
    static auto *const real = next(&::pwritev, "pwritev");
    return isRefused(file, place + bytesOf(parts, count)) ? -1 : real(file, parts, count, place);
}

ssize_t pwritev64(int file, const iovec *parts, int count, off64_t place)
{
    return pwritev(file, parts, count, place);
}

int posix_fallocate(int file, off_t place, off_t size)
{
    static auto *const real = next(&::posix_fallocate, "posix_fallocate");
    return isRefused(file, place + size) ? ENOSPC : real(file, place, size);
}

int posix_fallocate64(int file, off64_t place, off64_t size)
{
    return posix_fallocate(file, place, size);
}

} // extern "C"
#pragma GCC visibility pop
