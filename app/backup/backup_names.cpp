// SPDX-License-Identifier: MIT
#include "app/backup/backup_names.h"

#include "app/shop/file_facts.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace harrowby::app {

QString momentInName(const QDateTime &moment)
{
    return moment.toString(u"yyyy-MM-dd-HHmmss"_s);
}

QString numberedName(const QString &path, int number)
{
    const QFileInfo info(path);
    const QString suffix = info.suffix().isEmpty() ? QString() : u'.' + info.suffix();
    return u"%1/%2-%3%4"_s.arg(info.absolutePath(), info.completeBaseName(), QString::number(number), suffix);
}

QString usualBackupFolder()
{
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    return QFileInfo(documents).isDir() ? documents : QDir::homePath();
}

QString usualBackupName(const QDate &day)
{
    return u"harrowby-%1.%2"_s.arg(day.toString(Qt::ISODate), copySuffix);
}

QString usualRescuePlace(const QString &store, const QDateTime &now)
{
    const QString name = u"%1-rescue-%2.%3"_s.arg(QFileInfo(store).completeBaseName(), momentInName(now), copySuffix);
    QDir folder = QFileInfo(store).absoluteDir();
    if (judgeNewPlace(folder.filePath(name), false))
        folder.setPath(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation));
    if (!folder.exists())
        folder = QDir::home();
    QString place = folder.filePath(name);
    for (int number = 2; QFileInfo::exists(place); ++number)
        place = numberedName(folder.filePath(name), number);
    return place;
}

} // namespace harrowby::app
