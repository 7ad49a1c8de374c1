// SPDX-License-Identifier: MIT
#include "postgres/shop_memory.h"

#include "basic/logging.h"
#include "basic/private_files.h"

#include <QDir>
#include <QStandardPaths>

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace harrowby::postgres {

namespace {

using namespace Qt::StringLiterals;

constexpr auto prefix = "timeline-"_L1;

/// The number is in an empty file's name: that is there or not, also when two programs note different ones at once or
/// the machine dies meanwhile.
QStringList notes(const QDir &folder)
{
    return folder.entryList({prefix + u'*'}, QDir::Files | QDir::Hidden);
}

quint32 timelineOf(QStringView note)
{
    return note.sliced(prefix.size()).toUInt();
}

Result<void, QString> makeNote(const QString &folder, quint32 timeline)
{
    if (const auto made = makePrivateFolder(folder); !made)
        return made;
    const QString path = folder + u'/' + prefix + QString::number(timeline);
    const int note = ::open(QFile::encodeName(path).constData(), O_WRONLY | O_CREAT | O_CLOEXEC, privateFileMode);
    if (note < 0)
        return Unexpected(qt_error_string(errno));
    ::close(note);
    return syncFolder(folder);
}

} // namespace

QString stateFolder(const QString &chosen)
{
    if (!chosen.isEmpty())
        return chosen;
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + u"/harrowby/actions"_s;
}

QString folderOf(const QUuid &store, const QString &stateFolder)
{
    return stateFolder + u'/' + store.toString(QUuid::WithoutBraces);
}

quint32 highestTimeline(const QUuid &store, const QString &stateFolder)
{
    quint32 highest = 0;
    for (const QString &note : notes(QDir(folderOf(store, stateFolder))))
        highest = qMax(highest, timelineOf(note));
    return highest;
}

void noteTimeline(const QUuid &store, quint32 timeline, const QString &stateFolder)
{
    if (timeline <= highestTimeline(store, stateFolder))
        return;
    const QDir folder(folderOf(store, stateFolder));
    if (const auto made = makeNote(folder.path(), timeline); !made) {
        qCWarning(lcStore, "It is not noted which server was used last: %ls", qUtf16Printable(made.error()));
        return;
    }
    for (const QString &note : notes(folder)) {
        if (timelineOf(note) < timeline)
            QFile::remove(folder.filePath(note));
    }
}

} // namespace harrowby::postgres
