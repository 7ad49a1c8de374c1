// SPDX-License-Identifier: MIT
#include "app/backup/backup_names.h"

#include "app/backup/backup_place.h"
#include "app/shop/file_facts.h"
#include "basic/store_address.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

/// Of "postgresql://HOST/shop?…" or "dbname=shop host=…": the database, or of "service=shop" the service; as far as
/// it can stand in the name of a file.
QString serverName(const QString &target)
{
    static const QRegularExpression inUri(u"^\\w+://[^/?]*/([^/?]+)"_s);
    static const QRegularExpression inKeywords(u"(?:^|\\s)(?:service|dbname)\\s*=\\s*'?([^\\s']+)"_s);
    static const QRegularExpression unusual(u"[^\\w.-]+"_s, QRegularExpression::UseUnicodePropertiesOption);
    auto found = inUri.match(target);
    if (!found.hasMatch())
        found = inKeywords.match(target);
    const QString name = found.captured(1).replace(unusual, u"_"_s);
    return name.isEmpty() || name.startsWith(u'.') ? u"server"_s : name;
}

} // namespace

QString storeName(const QString &store)
{
    return isServer(store) ? serverName(storeWords(store)) : QFileInfo(realTarget(store)).completeBaseName();
}

QString storePlace(const QString &store)
{
    return isServer(store) ? storeWords(store) : realTarget(store);
}

QString momentInName(const QDateTime &moment)
{
    return moment.toString(u"yyyy-MM-dd-HHmmss"_s);
}

QString nameOfReplaced(const QString &store, const QString &why, const QDateTime &now)
{
    return u"%1-%2-%3.%4"_s.arg(storeName(store), why, momentInName(now), copySuffix);
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
