// SPDX-License-Identifier: MIT
#include "log_file.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QLoggingCategory>

#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

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

void handleMessage(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    const Route &current = route();
    const QString category = QString::fromUtf8(context.category);
    const bool ours = category.startsWith(u"harrowby."_s);
    if (ours && current.file != nullptr)
        current.file->add(type, category, message);
    if ((!ours || current.verbose) && current.previous != nullptr)
        current.previous(type, context, message);
}

} // namespace

LogFile::LogFile(QString path, qint64 limit) : m_path(std::move(path)), m_limit(limit), m_file(m_path) {}

void LogFile::add(QtMsgType type, const QString &category, const QString &message)
{
    const QMutexLocker lock(&m_mutex);
    if (!open())
        return;
    const QString time = QDateTime::currentDateTime().toString(Qt::ISODateWithMs);
    m_file.write(u"%1 %2 %3: "_s.arg(time, levelName(type), category).toUtf8() + oneLine(message).toUtf8() + '\n');
    m_file.flush();
    if (m_file.size() >= m_limit)
        rotate();
}

bool LogFile::open()
{
    if (m_file.isOpen())
        return true;
    QDir().mkpath(QFileInfo(m_path).absolutePath());
    return m_file.open(QIODevice::WriteOnly | QIODevice::Append);
}

void LogFile::rotate()
{
    m_file.close();
    const QString older = m_path + u".1"_s;
    QFile::remove(older);
    QFile::rename(m_path, older);
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
