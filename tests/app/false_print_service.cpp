// SPDX-License-Identifier: MIT
#include "tests/app/false_print_service.h"

#include <QDir>
#include <QFile>
#include <QSaveFile>

using namespace Qt::StringLiterals;

namespace harrowby::app::test {

FalsePrintService::FalsePrintService() : m_path(qgetenv("PATH"))
{
    reset();
}

FalsePrintService::~FalsePrintService()
{
    leave();
}

void FalsePrintService::reset()
{
    qputenv("PATH", QFile::encodeName(m_folder.path()) + ':' + m_path);
    for (const auto &name : {u"calls"_s, u"printed"_s})
        QFile::remove(m_folder.filePath(name));
    answerLp(u"cat >>%1/printed; echo 'request id is till-7 (0 file(s))'"_s.arg(m_folder.path()));
    answerCancel(u"exit 0"_s);
    setTakenAfter(0);
}

void FalsePrintService::setTakenAfter(int looks) const
{
    write(u"lpstat"_s, u"echo till-70 ann 5 now\n"
                       "left=%1\n"
                       "[ $left -lt 0 ] || [ $(grep -c ^lpstat %2/calls) -le $left ] && echo till-7 ann 5 now\n"
                       "exit 0"_s.arg(looks)
                           .arg(m_folder.path()));
}

void FalsePrintService::answerLp(const QString &script) const
{
    if (script == u"-"_s)
        qputenv("PATH", QFile::encodeName(m_folder.filePath(u"empty"_s)));
    else
        write(u"lp"_s, script);
}

void FalsePrintService::answerList(const QString &lines) const
{
    write(u"lpstat"_s, u"cat <<'END'\n%1\nEND"_s.arg(lines));
}

void FalsePrintService::answerCancel(const QString &script) const
{
    write(u"cancel"_s, script);
}

void FalsePrintService::leave() const
{
    qputenv("PATH", m_path);
}

QStringList FalsePrintService::calls() const
{
    QFile file(m_folder.filePath(u"calls"_s));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts);
}

QByteArray FalsePrintService::printed() const
{
    QFile file(m_folder.filePath(u"printed"_s));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void FalsePrintService::write(const QString &program, const QString &script) const
{
    QSaveFile file(m_folder.filePath(program)); // in the place of one that may be running
    if (!file.open(QIODevice::WriteOnly))
        qFatal("A false program cannot be written");
    file.write(u"#!/bin/sh\necho %1 \"$@\" >>%2/calls\n%3\n"_s.arg(program, m_folder.path(), script).toUtf8());
    file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    if (!file.commit())
        qFatal("A false program cannot be written");
}

} // namespace harrowby::app::test
