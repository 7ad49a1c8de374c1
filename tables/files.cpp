// SPDX-License-Identifier: MIT
#include "tables/files.h"

#include "basic/private_files.h"

#include <QFileInfo>
#include <QRegularExpression>
#include <QSaveFile>

using namespace Qt::StringLiterals;

namespace harrowby::tables {

Result<void, QString> saveFile(const QString &path, const QByteArray &bytes)
{
    const QFileInfo there(path);
    if (there.isDir())
        return Unexpected(u"A folder has that name."_s);
    if (there.exists() && !there.isFile()) // a device would be replaced by the file
        return Unexpected(u"Something that is not a file has that name."_s);
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return Unexpected(file.errorString());
    // Unbuffered: QFileDevice loses the error of a write that fails when its buffer is flushed at closing.
    if (const auto written = writeToDisk(file.handle(), bytes); !written)
        return written;
    if (!file.commit())
        return Unexpected(file.errorString());
    return {};
}

QString fileNameFor(const QString &words)
{
    static const QRegularExpression refused(uR"([/\\:*?"<>|\x00-\x1f]+)"_s);
    return QString(words).replace(refused, u"-"_s).trimmed();
}

} // namespace harrowby::tables
