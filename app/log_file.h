// SPDX-License-Identifier: MIT
#pragma once

#include <QFile>
#include <QMutex>
#include <QString>
#include <QtGlobal>

namespace harrowby::app {

/// A text file that lines are added to, each with the time. At its limit it becomes "<name>.1", in place of the one
/// before, and a new one is begun. What cannot be written is dropped: a log must not stop a sale.
class LogFile
{
public:
    static constexpr qint64 defaultLimit = 1024 * 1024;

    explicit LogFile(QString path, qint64 limit = defaultLimit);
    /// May be called on any thread.
    void add(QtMsgType type, const QString &category, const QString &message);

private:
    bool open();
    void rotate();

    QString m_path;
    qint64 m_limit;
    QFile m_file;
    QMutex m_mutex;
};

/// As long as it lives, the component's warnings (categories "harrowby.*") go into the log file, and to the terminal
/// only when `verbose` is set. All other messages go where they went before. One at a time.
class LogRouting
{
public:
    LogRouting(LogFile &file, bool verbose);
    ~LogRouting();
    LogRouting(const LogRouting &) = delete;
    LogRouting &operator=(const LogRouting &) = delete;
};

} // namespace harrowby::app
