// SPDX-License-Identifier: MIT
#include "app/backup/kept_backups.h"

#include "app/backup/backup_names.h"
#include "basic/logging.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSysInfo>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

QString beginOr(const QString &begin, const QString &store)
{
    return begin.isEmpty() ? storeName(store) : begin;
}

/// The moment in a name, and the number of one that was made within the same second.
using Place = std::pair<QString, int>;

/// Of those removed, all are older than `made`: another program's newer one stays, even when both keep one only.
void removeOldest(KeptBackup &kept, const QStringList &all, int keep)
{
    const QString made = QFileInfo(kept.result.file).fileName();
    for (qsizetype at = 0, own = -1; at < all.size(); ++at) {
        if (QFileInfo(all.at(at)).fileName() == made)
            own = at;
        else if (own >= 0 && at >= keep)
            (QFile::remove(all.at(at)) || !QFile::exists(all.at(at)) ? kept.removed : kept.notRemoved) << all.at(at);
    }
    for (const QString &left : std::as_const(kept.notRemoved))
        qCWarning(lcStore).noquote() << "The old backup" << left << "could not be removed.";
}

} // namespace

QString storeMark(const QString &store)
{
    constexpr qsizetype shortened = 8;
    const QByteArray machine = QSysInfo::machineUniqueId();
    const QByteArray where =
        (machine.isEmpty() ? QSysInfo::machineHostName().toUtf8() : machine) + '\n' + storePlace(store).toUtf8();
    return QString::fromLatin1(QCryptographicHash::hash(where, QCryptographicHash::Sha256).toHex().left(shortened));
}

QString keptBackupName(const QString &store, const QDateTime &moment, const QString &begin)
{
    return u"%1-%2-%3.%4"_s.arg(beginOr(begin, store), momentInName(moment), storeMark(store), copySuffix);
}

QStringList keptBackups(const QString &folder, const QString &store, const QString &begin)
{
    const QRegularExpression form(u"^%1-(%2)-%3(?:-(\\d{1,4}))?\\.%4$"_s.arg(
        QRegularExpression::escape(beginOr(begin, store)), momentPattern, storeMark(store), copySuffix));
    QList<std::pair<Place, QString>> found;
    const QFileInfoList files = QDir(folder).entryInfoList(QDir::Files | QDir::Hidden | QDir::NoSymLinks);
    for (const QFileInfo &file : files) {
        if (const auto match = form.match(file.fileName()); match.hasMatch())
            found.emplaceBack(Place(match.captured(1), match.captured(2).toInt()), file.absoluteFilePath());
    }
    std::ranges::sort(found, std::greater());
    QStringList paths;
    for (const auto &[place, path] : std::as_const(found))
        paths << path;
    return paths;
}

KeptBackup keepBackup(const QString &store, const QString &folder, int keep, const QDateTime &now,
                      const BackupWatch &watch, const QString &begin)
{
    const QString target = QDir(folder).absoluteFilePath(keptBackupName(store, now, begin));
    KeptBackup kept = {backUpStoreNumbered(store, target, watch), {}, {}};
    if (kept.result.outcome == BackupResult::Outcome::Done && keep > 0)
        removeOldest(kept, keptBackups(folder, store, begin), keep);
    return kept;
}

} // namespace harrowby::app
