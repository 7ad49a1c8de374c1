// SPDX-License-Identifier: MIT
#include "tests/app/bad_disk.h"

#include <sqlite3.h>

#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <unistd.h>
#include <utility>

namespace harrowby::app::test {

namespace {

struct State
{
    QByteArray ending;
    BadDisk::Fault fault = BadDisk::Fault::Read;
};

State &state()
{
    static State current;
    return current;
}

bool isBad(int descriptor)
{
    std::array<char, 64> link = {};
    std::snprintf(link.data(), link.size(), "/proc/self/fd/%d", descriptor);
    std::array<char, PATH_MAX> name = {};
    return ::readlink(link.data(), name.data(), name.size() - 1) > 0 &&
           QByteArray(name.data()).endsWith(state().ending);
}

ssize_t badRead(int descriptor, void *buffer, size_t size, off_t offset)
{
    if (state().fault != BadDisk::Fault::Read || !isBad(descriptor))
        return ::pread(descriptor, buffer, size, offset);
    errno = EIO;
    return -1;
}

ssize_t badWrite(int descriptor, const void *buffer, size_t size, off_t offset)
{
    if (state().fault == BadDisk::Fault::Read || !isBad(descriptor))
        return ::pwrite(descriptor, buffer, size, offset);
    if (state().fault == BadDisk::Fault::Forget && offset > 0)
        return ::pwrite(descriptor, QByteArray(static_cast<qsizetype>(size), '?').constData(), size, offset);
    if (state().fault == BadDisk::Fault::Forget)
        return ::pwrite(descriptor, buffer, size, offset);
    errno = EIO;
    return -1;
}

template <class Function>
sqlite3_syscall_ptr call(Function *function)
{
    return reinterpret_cast<sqlite3_syscall_ptr>(function);
}

void replace(sqlite3_syscall_ptr read, sqlite3_syscall_ptr write)
{
    sqlite3_vfs *files = sqlite3_vfs_find(nullptr);
    // SQLite uses one call of each pair; a null pointer restores the default.
    const std::array<std::pair<const char *, sqlite3_syscall_ptr>, 4> calls = {
        {{"pread", read}, {"pread64", read}, {"pwrite", write}, {"pwrite64", write}}};
    for (const auto &[name, function] : calls)
        files->xSetSystemCall(files, name, function);
}

} // namespace

BadDisk::BadDisk(const QByteArray &name, Fault fault)
{
    state() = {'/' + name, fault};
    replace(call(badRead), call(badWrite));
}

BadDisk::~BadDisk()
{
    replace(nullptr, nullptr);
}

} // namespace harrowby::app::test
