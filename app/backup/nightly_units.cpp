// SPDX-License-Identifier: MIT
#include "app/backup/nightly_units.h"

#include "app/backup/kept_backups.h"
#include "app/shop/errand_names.h"
#include "basic/store_address.h"

#include <QFileInfo>
#include <QMap>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

const auto note = u"# Written by the office of Harrowby Inventory, which overwrites it.\n"_s;
const auto timeForm = u"HH:mm"_s;

QString description(const NightlyJob &job)
{
    const QString store = isServer(job.store) ? storeWords(job.store) : QFileInfo(job.store).fileName();
    return u"Backup of the store %1"_s.arg(QString(store).replace(u'%', u"%%"_s));
}

QString quotedForShell(QString text)
{
    return u'\'' + text.replace(u'\'', u"'\\''"_s) + u'\'';
}

} // namespace

QString quotedForUnit(const QString &text, UnitWord word)
{
    QString quoted;
    for (const QChar character : text) {
        if (character == u'\\' || character == u'"')
            quoted += u'\\';
        else if (character == u'%' || (character == u'$' && word == UnitWord::Argument))
            quoted += character;
        quoted += character;
    }
    return u'"' + quoted + u'"';
}

bool fitsUnit(const QString &text)
{
    return std::ranges::none_of(text, [](QChar character) {
        return character.category() == QChar::Other_Control || character == QChar::ReplacementCharacter;
    });
}

QString nightlyServiceText(const NightlyJob &job, const NightlyPlan &plan)
{
    QStringList words = {quotedForUnit(job.program, UnitWord::Program)};
    for (const QString &argument :
         {u"--database"_s, job.store, QString(errand::backup), plan.folder, u"--keep"_s, QString::number(plan.keep)})
        words << quotedForUnit(argument, UnitWord::Argument);
    return note + u"[Unit]\nDescription=%1\n\n[Service]\nType=oneshot\nNice=10\nExecStart=%2\n"_s.arg(description(job),
                                                                                                      words.join(u' '));
}

/// systemd ignores sections whose names begin with "X-".
QString nightlyTimerText(const NightlyJob &job, const NightlyPlan &plan)
{
    return note + u"[Unit]\nDescription="_s + description(job) + u", every day\n\n[Timer]\nOnCalendar=*-*-* "_s +
           plan.time.toString(timeForm) + u":00\nPersistent=true\n\n[Install]\nWantedBy=timers.target\n\n"_s +
           u"[X-Harrowby]\nTime="_s + plan.time.toString(timeForm) + u"\nKeep="_s + QString::number(plan.keep) +
           u"\nFolder="_s + plan.folder + u"\nProgram="_s + job.program + u'\n';
}

std::optional<ReadNightly> readNightlyTimer(const QString &text)
{
    QMap<QString, QString> values;
    const qsizetype own = text.indexOf(u"[X-Harrowby]\n"_s);
    if (own < 0)
        return {};
    const QStringList lines = text.mid(own).split(u'\n');
    for (const QString &line : lines) {
        if (const qsizetype equals = line.indexOf(u'='); equals > 0)
            values.insert(line.left(equals), line.mid(equals + 1));
    }
    const NightlyPlan plan = {QTime::fromString(values.value(u"Time"_s), timeForm), values.value(u"Folder"_s),
                              values.value(u"Keep"_s).toInt()};
    if (!plan.time.isValid() || plan.folder.isEmpty() || !mayKeep(plan.keep))
        return {};
    return ReadNightly{plan, values.value(u"Program"_s)};
}

/// In cron's lines a percent sign ends the command.
QString nightlyCronLine(const NightlyJob &job, const NightlyPlan &plan)
{
    QString command = quotedForShell(job.program) + u" --database "_s + quotedForShell(job.store) + u' ' +
                      errand::backup + u' ' + quotedForShell(plan.folder) + u" --keep "_s + QString::number(plan.keep);
    return QString::number(plan.time.minute()) + u' ' + QString::number(plan.time.hour()) + u" * * * "_s +
           command.replace(u'%', u"\\%"_s);
}

} // namespace harrowby::app
