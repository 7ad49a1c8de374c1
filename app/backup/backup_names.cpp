// SPDX-License-Identifier: MIT
#include "app/backup/backup_names.h"

#include "app/shop/file_facts.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace harrowby::app {

QString usualBackupFolder()
{
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    return QFileInfo(documents).isDir() ? documents : QDir::homePath();
}

QString usualBackupName(const QDate &day)
{
    return u"harrowby-%1.db"_s.arg(day.toString(Qt::ISODate));
}

QString usualRescuePlace(const QString &store, const QDateTime &now)
{
    const QString name = QFileInfo(store).completeBaseName() + now.toString(u"'-rescue-'yyyy-MM-dd-HHmmss"_s);
    QDir folder = QFileInfo(store).absoluteDir();
    if (judgeNewPlace(folder.filePath(name + u".db"_s), false))
        folder.setPath(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation));
    if (!folder.exists())
        folder = QDir::home();
    QString place = folder.filePath(name + u".db"_s);
    for (int number = 2; QFileInfo::exists(place); ++number)
        place = folder.filePath(u"%1-%2.db"_s.arg(name).arg(number));
    return place;
}

} // namespace harrowby::app
