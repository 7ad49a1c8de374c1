// SPDX-License-Identifier: MIT
#include "app/start/log_file.h"

#include "basic/private_files.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QLockFile>
#include <QLoggingCategory>

#include <cstdio>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr int mostTries = 100;

struct Route
{
    LogFile *file = nullptr;
    bool verbose = false;
    QtMessageHandler previous = nullptr;
};

Route &route()
{
    static Route current;
    return current;
}

QString levelName(QtMsgType type)
{
    switch (type) {
    case QtDebugMsg:
        return u"debug"_s;
    case QtInfoMsg:
        return u"info"_s;
    case QtWarningMsg:
        return u"warning"_s;
    case QtCriticalMsg:
        return u"critical"_s;
    case QtFatalMsg:
        break;
    }
    return u"fatal"_s;
}

/// One message, one line: names may hold line breaks.
QString oneLine(QString text)
{
    return text.replace(u'\\', u"\\\\"_s).replace(u'\r', u"\\r"_s).replace(u'\n', u"\\n"_s);
}

QByteArray lineOf(QtMsgType type, const QString &category, const QString &message)
{
    const QString time = QDateTime::currentDateTime().toString(Qt::ISODateWithMs);
    return u"%1 %2 %3: "_s.arg(time, levelName(type), category).toUtf8() + oneLine(message).toUtf8() + '\n';
}

void handleMessage(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    const Route &current = route();
    const QString category = QString::fromUtf8(context.category);
    const bool ours = category.startsWith(u"harrowby."_s);
    const bool written = ours && current.file != nullptr && current.file->add(type, category, message);
    if ((!ours || current.verbose) && current.previous != nullptr)
        current.previous(type, context, message);
    else if (ours && !written)
        (void)writeAll(STDERR_FILENO, lineOf(type, category, message));
}

qint64 sizeOf(const QString &path)
{
    struct stat facts = {};
    return ::stat(QFile::encodeName(path).constData(), &facts) == 0 && S_ISREG(facts.st_mode) ? facts.st_size : 0;
}

} // namespace

LogFile::LogFile(QString path, qint64 limit) : m_path(std::move(path)), m_limit(limit) {}

bool LogFile::add(QtMsgType type, const QString &category, const QString &message)
{
    const auto outcome = write(lineOf(type, category, message));
    tell(outcome);
    return outcome.has_value();
}

void LogFile::probe()
{
    tell(write({}));
}

LogFile::Facts LogFile::factsOf(const QFile &file)
{
    struct stat facts = {};
    if (::fstat(file.handle(), &facts) != 0)
        return {};
    return {facts.st_nlink > 0, facts.st_size};
}

Result<void, QString> LogFile::write(const QByteArray &line)
{
    const QMutexLocker lock(&m_mutex);
    if (const auto made = makePrivateFolder(QFileInfo(m_path).absolutePath()); !made)
        return made;
    if (sizeOf(m_path) >= m_limit)
        rotate();
    // Another program may have rotated the file meanwhile, even several times.
    for (int tries = 0; tries < mostTries; ++tries) {
        const auto file = append(line);
        if (!file)
            return Unexpected(file.error());
        if (!file->isLinked)
            continue;
        if (file->size >= m_limit)
            rotate();
        return {};
    }
    return Unexpected(u"the file is removed again and again"_s);
}

Result<LogFile::Facts, QString> LogFile::append(const QByteArray &line) const
{
    QFile file(m_path);
    if (const auto opened = openOrdinaryFile(file, QIODevice::WriteOnly | QIODevice::Append); !opened)
        return Unexpected(opened.error());
    if (const auto written = writeAll(file.handle(), line); !written)
        return Unexpected(written.error());
    return factsOf(file);
}

void LogFile::rotate()
{
    const QString lockName = m_path + u".lock"_s;
    if (QFileInfo::exists(lockName) && !QFileInfo(lockName).isFile())
        return;
    QLockFile lock(lockName);
    // Another program has the lock and is rotating: write on, and check again with the next line.
    if (!lock.tryLock() || sizeOf(m_path) < m_limit)
        return;
    const QString older = m_path + u".1"_s;
    std::rename(QFile::encodeName(m_path).constData(), QFile::encodeName(older).constData());
}

void LogFile::tell(const Result<void, QString> &outcome)
{
    {
        const QMutexLocker lock(&m_mutex);
        const auto reason = outcome ? std::nullopt : std::optional(outcome.error());
        if (reason == std::exchange(m_reason, reason))
            return;
    }
    if (m_handler)
        m_handler(outcome);
}

LogRouting::LogRouting(LogFile &file, bool verbose)
{
    route() = {&file, verbose, nullptr};
    route().previous = qInstallMessageHandler(handleMessage);
    QLoggingCategory::setFilterRules(u"harrowby.*.warning=true"_s);
}

LogRouting::~LogRouting()
{
    qInstallMessageHandler(route().previous);
    route().file = nullptr;
}

} // namespace harrowby::app
