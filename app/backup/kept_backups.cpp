// SPDX-License-Identifier: MIT
#include "app/backup/kept_backups.h"

#include "app/backup/backup_names.h"
#include "app/backup/backup_place.h"

#include <QCryptographicHash>
#include <QFileInfo>
#include <QSysInfo>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

QString markOf(const QString &store)
{
    constexpr qsizetype shortened = 8;
    const QByteArray machine = QSysInfo::machineUniqueId();
    const QByteArray where =
        (machine.isEmpty() ? QSysInfo::machineHostName().toUtf8() : machine) + '\n' + realTarget(store).toUtf8();
    return QString::fromLatin1(QCryptographicHash::hash(where, QCryptographicHash::Sha256).toHex().left(shortened));
}

} // namespace

QString keptBackupName(const QString &store, const QDateTime &moment)
{
    return u"%1-%2-%3.%4"_s.arg(QFileInfo(realTarget(store)).completeBaseName(),
                                moment.toString(u"yyyy-MM-dd-HHmmss"_s), markOf(store), copySuffix);
}

} // namespace harrowby::app
