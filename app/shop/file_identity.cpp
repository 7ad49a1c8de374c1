// SPDX-License-Identifier: MIT
#include "app/shop/file_identity.h"

#include <QDir>
#include <QFile>

#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <climits>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

QByteArray nameBehind(const QByteArray &link)
{
    std::array<char, PATH_MAX> name = {};
    const ssize_t length = ::readlink(link.constData(), name.data(), name.size());
    return length > 0 ? QByteArray(name.data(), length) : QByteArray();
}

} // namespace

std::optional<FileFacts> factsOf(const QByteArray &path)
{
    constexpr std::int64_t nanoseconds = 1'000'000'000;
    struct stat found = {};
    if (::stat(path.constData(), &found) != 0)
        return {};
    return FileFacts{
        {found.st_dev, found.st_ino}, found.st_size, found.st_mtim.tv_sec * nanoseconds + found.st_mtim.tv_nsec};
}

std::optional<OpenFile> openFileOf(const FileId &id)
{
    const auto folder = u"/proc/self/fd"_s;
    for (const QString &number : QDir(folder).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot)) {
        const QByteArray link = QFile::encodeName(folder + u'/' + number);
        const auto facts = factsOf(link);
        if (!facts || facts->id != id)
            continue;
        const QByteArray name = nameBehind(link);
        const auto named = factsOf(name);
        return OpenFile{*facts, named && named->id == id ? QFile::decodeName(name) : QString()};
    }
    return {};
}

bool tellsChangesAtOnce(const QByteArray &path)
{
    // NFS, SMB in its three forms, FUSE, 9P, Ceph, AFS, Coda, the shared folders of a virtual machine.
    static constexpr std::array<std::uint32_t, 10> others = {
        0x6969, 0x517B, 0xFF534D42, 0xFE534D42, 0x65735546, 0x01021997, 0x00C36400, 0x5346414F, 0x73757245, 0x786F4256};
    struct statfs found = {};
    if (::statfs(path.constData(), &found) != 0)
        return false;
    return std::find(others.begin(), others.end(), static_cast<std::uint32_t>(found.f_type)) == others.end();
}

} // namespace harrowby::app
