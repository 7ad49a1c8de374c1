// SPDX-License-Identifier: MIT
#include "tests/platform/isolated_home.h"

#include <QDir>
#include <QFile>
#include <QSaveFile>

using namespace Qt::StringLiterals;

namespace harrowby::testing {

IsolatedHome::IsolatedHome()
{
    const auto set = [this](const char *name, const QString &below) { qputenv(name, path(below).toUtf8()); };
    set("HOME", {});
    set("XDG_CONFIG_HOME", u".config"_s);
    set("XDG_DATA_HOME", u".local/share"_s);
    qputenv("CUPS_SERVER", "127.0.0.1:9");
    qunsetenv("LPDEST");
    qunsetenv("PRINTER");
    qputenv("PATH", m_programs.path().toUtf8() + ':' + qgetenv("PATH"));
}

QString IsolatedHome::receipts() const
{
    return path(u"Documents/Harrowby Receipts"_s);
}

QStringList IsolatedHome::receiptFiles() const
{
    const QDir folder(receipts());
    QStringList files;
    for (const QString &name : folder.entryList(QDir::Files | QDir::Hidden, QDir::Name))
        files += folder.filePath(name);
    return files;
}

void IsolatedHome::clear() const
{
    const QFileInfoList entries =
        QDir(path()).entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    for (const QFileInfo &entry : entries) {
        if (entry.isDir() && !entry.isSymLink())
            QDir(entry.filePath()).removeRecursively();
        else
            QFile::remove(entry.filePath());
    }
}

void IsolatedHome::addProgram(const QString &name, const QString &script) const
{
    // In the place of one that may be running just now: a shell reads its script as it goes.
    QSaveFile file(m_programs.filePath(name));
    if (!file.open(QIODevice::WriteOnly))
        qFatal("cannot write a test program");
    file.write("#!/bin/sh\n" + script.toUtf8() + '\n');
    file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    if (!file.commit())
        qFatal("cannot write a test program");
}

void IsolatedHome::removePrograms() const
{
    const QFileInfoList files = QDir(m_programs.path()).entryInfoList(QDir::Files);
    for (const QFileInfo &file : files)
        QFile::remove(file.filePath());
}

} // namespace harrowby::testing
