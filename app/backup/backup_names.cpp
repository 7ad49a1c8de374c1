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
    const QString name = QFileInfo(store).completeBaseName() + u"-rescue-"_s + momentInName(now);
    const QString suffix = u'.' + copySuffix.toString();
    QDir folder = QFileInfo(store).absoluteDir();
    if (judgeNewPlace(folder.filePath(name + suffix), false))
        folder.setPath(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation));
    if (!folder.exists())
        folder = QDir::home();
    QString place = folder.filePath(name + suffix);
    for (int number = 2; QFileInfo::exists(place); ++number)
        place = folder.filePath(name + u'-' + QString::number(number) + suffix);
    return place;
}

} // namespace harrowby::app
