// SPDX-License-Identifier: MIT
#include "app/catalogue/import_owner.h"

#include <QCoreApplication>
#include <QFile>
#include <QStringList>
#include <QSysInfo>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

/// When the process was started, in the kernel's ticks; empty when there is none of that number. The process's name,
/// which may hold blanks, ends with the last bracket.
QString startOf(const QString &process)
{
    QFile file(u"/proc/%1/stat"_s.arg(process));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QString facts = QString::fromLatin1(file.readAll());
    constexpr int startPlace = 19; // behind the name
    return facts.sliced(facts.lastIndexOf(u')') + 1).simplified().split(u' ').value(startPlace);
}

} // namespace

QString thisOwner()
{
    const QString process = QString::number(QCoreApplication::applicationPid());
    return QStringList{QSysInfo::machineHostName(), process, startOf(process)}.join(u' ');
}

bool mayLive(const QString &owner)
{
    const QStringList marks = owner.split(u' ');
    if (marks.value(0) != QSysInfo::machineHostName())
        return true;
    return !marks.value(1).isEmpty() && startOf(marks.value(1)) == marks.value(2) && !marks.value(2).isEmpty();
}

} // namespace harrowby::app
