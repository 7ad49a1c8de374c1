// SPDX-License-Identifier: MIT
#include "app/shop/store_access.h"

#include "app/shop/file_facts.h"

#include <QFile>

#include <cerrno>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr mode_t forOthers = S_IRWXG | S_IRWXO;

/// chmod() by name: opening and closing the database file would drop SQLite's POSIX locks on it.
mode_t permissionsOf(const QString &path)
{
    struct stat facts = {};
    return ::stat(QFile::encodeName(path).constData(), &facts) == 0 ? facts.st_mode & 07777 : 0;
}

} // namespace

bool isOpenToOthers(const QString &store)
{
    return (permissionsOf(store) & forOthers) != 0;
}

QString permissionsText(const QString &store)
{
    return u"%1"_s.arg(permissionsOf(store), 4, 8, QLatin1Char('0'));
}

Result<void, QString> closeToOthers(const QString &store)
{
    // The file first: SQLite creates log and index with the file's mode.
    for (const QString &file : {store, logFileOf(store), logIndexOf(store), journalOf(store)}) {
        const mode_t permissions = permissionsOf(file);
        if ((permissions & forOthers) == 0)
            continue;
        if (::chmod(QFile::encodeName(file).constData(), permissions & ~forOthers) != 0 && errno != ENOENT)
            return Unexpected(qt_error_string(errno));
    }
    return {};
}

} // namespace harrowby::app
