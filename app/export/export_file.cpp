// SPDX-License-Identifier: MIT
#include "app/export/export_file.h"

#include "app/backup/backup_place.h"
#include "app/shop/file_facts.h"
#include "app/shop/file_naming.h"
#include "basic/private_files.h"

#include <QFileInfo>
#include <QSaveFile>

#include <cerrno>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr qsizetype pieceSize = 1 << 20; // until the watch is asked again

ExportEnd notWritten(const QString &reason)
{
    if (reason == qt_error_string(ENOSPC) || reason == qt_error_string(EDQUOT))
        return {ExportEnd::Outcome::Failed,
                u"There is no space left at the place of the file. Please free some, or choose another place."_s, 0, 0};
    return {ExportEnd::Outcome::Failed, u"The file could not be written to its place (%1)."_s.arg(reason), 0, 0};
}

} // namespace

ExportEnd putIntoPlace(QByteArrayView bytes, const QString &target, const WorkWatch &watch)
{
    QSaveFile file(target);
    if (!file.open(QIODevice::WriteOnly))
        return notWritten(file.errorString());
    for (qsizetype at = 0; at < bytes.size(); at += pieceSize) {
        if (!watch({u"The file is being written …"_s, percentOf(at, bytes.size())}))
            return {ExportEnd::Outcome::Stopped, {}, 0, 0};
        // Unbuffered: QFileDevice loses the error of a write that fails when its buffer is flushed at closing.
        const QByteArrayView piece = bytes.sliced(at, qMin(pieceSize, bytes.size() - at));
        if (const auto written = writeAll(file.handle(), piece); !written)
            return notWritten(written.error());
    }
    if (const auto synced = writeToDisk(file.handle(), {}); !synced)
        return notWritten(synced.error());
    errno = 0;
    if (!file.commit()) // which may know no reason
        return notWritten(errno != 0 ? qt_error_string(errno) : file.errorString());
    syncFolder(QFileInfo(target).absolutePath());
    return {ExportEnd::Outcome::Done, {}, 0, bytes.size()};
}

Result<void, QString> checkExportPlace(const QString &store, const QString &target)
{
    const QFileInfo info(target);
    if (info.fileName().isEmpty())
        return Unexpected(u"Please choose a place for the file."_s);
    if (belongsToStore(store, target))
        return Unexpected(u"This is the store file itself. Please choose another name."_s);
    if (info.isDir())
        return Unexpected(u"\"%1\" is a folder. Please give the file a name in it."_s.arg(target));
    if (nameIsTaken(target) && !info.isFile()) // a device would be replaced by the file
        return Unexpected(u"\"%1\" is not an ordinary file."_s.arg(target));
    return checkFolderOf(target);
}

} // namespace harrowby::app
