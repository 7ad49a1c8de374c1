// SPDX-License-Identifier: MIT
#include "app/backup/good_backups.h"

#include "app/records/shop_settings.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocale>
#include <QSysInfo>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

const auto settingName = u"GoodBackups"_s;
constexpr qsizetype mostNoted = 20;
constexpr qint64 secondsOfDay = qint64{24} * 60 * 60;
constexpr qint64 overdueAfter = 2 * secondsOfDay;
constexpr qint64 clockPlay = qint64{60} * 60; // seconds by which two machines' clocks may differ

QList<GoodBackup> readNotes(const QString &text)
{
    QList<GoodBackup> noted;
    const QJsonArray entries = QJsonDocument::fromJson(text.toUtf8()).array();
    for (const auto &entry : entries) {
        const QJsonObject one = entry.toObject();
        const GoodBackup backup = {timeOfRecord(one.value(u"made"_s).toString()), one.value(u"file"_s).toString(),
                                   one.value(u"bytes"_s).toInteger(), one.value(u"machine"_s).toString()};
        if (backup.made.isValid() && !backup.file.isEmpty())
            noted << backup;
    }
    return noted;
}

QString writeNotes(const QList<GoodBackup> &noted)
{
    QJsonArray entries;
    for (const GoodBackup &backup : noted)
        entries << QJsonObject{{u"made"_s, recordTime(backup.made)},
                               {u"file"_s, backup.file},
                               {u"bytes"_s, backup.bytes},
                               {u"machine"_s, backup.machine}};
    return QString::fromUtf8(QJsonDocument(entries).toJson(QJsonDocument::Compact));
}

QString whenText(const QDateTime &moment)
{
    return QLocale::c().toString(moment.toLocalTime(), u"d MMMM yyyy, HH:mm"_s);
}

QString whereText(const BackupState &state)
{
    const GoodBackup &last = *state.last;
    const QString place = u"%1, %2"_s.arg(QLocale::c().formattedDataSize(last.bytes), last.file);
    if (state.sight == BackupSight::There)
        return place;
    if (last.machine != QSysInfo::machineHostName())
        return u"%1, on the computer \"%2\""_s.arg(place, last.machine);
    return u"%1, whose folder is not there now"_s.arg(place);
}

} // namespace

std::optional<DbFailure> noteGoodBackup(Records &records, const GoodBackup &backup)
{
    std::optional<DbFailure> failure;
    const auto kept = records.together(kept::setting(), [&] {
        ShopSettings settings(records);
        const auto before = settings.read(settingName);
        if (!before) {
            failure = before.error();
            return false;
        }
        QList<GoodBackup> noted = readNotes(before->value_or(QString()));
        noted.removeIf([&](const GoodBackup &other) { return other.file == backup.file; }); // that one was replaced
        noted.prepend(backup);
        noted.resize(std::min(noted.size(), mostNoted));
        const RecordStatement removing = {u"delete from HarrowbySetting where Name = ?"_s, {settingName}};
        const RecordStatement adding = {u"insert into HarrowbySetting (Name, Value) values (?, ?)"_s,
                                        {settingName, writeNotes(noted)}};
        auto written = records.write(kept::setting(), removing);
        if (written)
            written = records.write(kept::setting(), adding);
        if (!written)
            failure = written.error();
        return written.has_value();
    });
    if (!kept)
        return kept.error();
    return failure;
}

std::optional<DbFailure> noteGoodBackup(Records &records, const QString &file, qint64 bytes, const QDateTime &now)
{
    return noteGoodBackup(records, {now.toUTC(), file, bytes, QSysInfo::machineHostName()});
}

Records::Answer<QList<GoodBackup>> readGoodBackups(Records &records)
{
    const auto notes = ShopSettings(records).read(settingName);
    if (!notes)
        return Unexpected(notes.error());
    return readNotes(notes->value_or(QString()));
}

QList<GoodBackup> goodBackups(Records &records)
{
    return readGoodBackups(records).value_or(QList<GoodBackup>());
}

BackupSight sightOf(const GoodBackup &backup)
{
    const QFileInfo file(backup.file);
    if (file.isFile() && file.size() == backup.bytes)
        return BackupSight::There;
    const bool isHere = backup.machine == QSysInfo::machineHostName() && QFileInfo(file.absolutePath()).isDir();
    return isHere ? BackupSight::Gone : BackupSight::Away;
}

BackupState backupState(const QList<GoodBackup> &noted, const QDateTime &now)
{
    BackupState state;
    for (const GoodBackup &backup : noted) {
        const BackupSight sight = sightOf(backup);
        if (sight == BackupSight::Gone) {
            ++state.gone;
            continue;
        }
        const qint64 age = backup.made.secsTo(now);
        state.last = backup;
        state.sight = sight;
        state.isOverdue = age > overdueAfter || age < -clockPlay;
        return state;
    }
    return state;
}

QString backupWarning(Records &records, const QDateTime &now)
{
    const BackupState state = backupState(goodBackups(records), now);
    if (!state.isOverdue)
        return {};
    const auto items = records.read({u"select 1 from StockList limit 1"_s, {}});
    if (!items || items->isEmpty())
        return {};
    if (!state.last)
        return state.gone > 0 ? u"The last backup is gone"_s : u"No backup yet"_s;
    const qint64 days = state.last->made.secsTo(now) / secondsOfDay;
    return days < 0 ? u"No backup with a true time"_s : u"No backup for %1 days"_s.arg(days);
}

QString backupStateText(const BackupState &state, const QDateTime &now)
{
    QStringList lines;
    if (!state.last && state.gone == 0)
        lines << u"No backup of this store is known yet."_s;
    if (state.gone > 0)
        lines << (state.gone == 1 ? u"A backup that was made is not there any more."_s
                                  : u"%1 backups that were made are not there any more."_s.arg(state.gone));
    if (!state.last)
        return lines.join(u'\n');
    lines << u"Last good backup: %1, %2"_s.arg(whenText(state.last->made), whereText(state));
    const qint64 age = state.last->made.secsTo(now);
    if (age < -clockPlay)
        lines << u"That time lies ahead: one of the clocks was wrong."_s;
    else if (state.isOverdue)
        lines << u"That was %1 days ago."_s.arg(age / secondsOfDay);
    return lines.join(u'\n');
}

} // namespace harrowby::app
