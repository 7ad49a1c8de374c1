// SPDX-License-Identifier: MIT
#pragma once

#include "basic/result.h"

#include <QByteArray>
#include <QMutex>
#include <QString>
#include <QtGlobal>

#include <functional>
#include <optional>
#include <utility>

class QFile;

namespace harrowby::app {

/// A text file to which lines are appended, each with the time. At its size limit it is renamed to "<name>.1",
/// replacing an earlier one, and a new file is begun. Several programs may write the same log. Both files have mode
/// 0600. A line that cannot be written is dropped, as a log must not stop a sale, and the handler is told.
class LogFile
{
public:
    static constexpr qint64 defaultLimit = qint64{1024} * 1024;
    /// Why lines cannot be written, told once for each reason; and that they can be written again.
    using Handler = std::function<void(const Result<void, QString> &outcome)>;

    explicit LogFile(QString path, qint64 limit = defaultLimit);
    /// False when the line could not be written. May be called on any thread.
    bool add(QtMsgType type, const QString &category, const QString &message);
    /// Finds out whether lines can be written, before there are any.
    void probe();
    /// Called on the thread that adds a line. To be set before that.
    void setHandler(Handler handler) { m_handler = std::move(handler); }
    [[nodiscard]] const QString &path() const { return m_path; }

private:
    struct Facts
    {
        bool isLinked = false; ///< still has a name
        qint64 size = 0;       ///< bytes
    };

    [[nodiscard]] static Facts factsOf(const QFile &file);
    [[nodiscard]] Result<void, QString> write(const QByteArray &line);
    [[nodiscard]] Result<Facts, QString> append(const QByteArray &line) const;
    void rotate();
    void tell(const Result<void, QString> &outcome);

    QString m_path;
    qint64 m_limit;
    QMutex m_mutex;
    std::optional<QString> m_reason; ///< why the last line could not be written
    Handler m_handler;
};

/// As long as it lives, the component's warnings (categories "harrowby.*") go into the log file, and to the terminal
/// (standard error) only when `verbose` is set or the file does not take them. All other messages go where they went
/// before. One at a time.
class LogRouting
{
public:
    LogRouting(LogFile &file, bool verbose);
    ~LogRouting();
    LogRouting(const LogRouting &) = delete;
    LogRouting &operator=(const LogRouting &) = delete;
};

} // namespace harrowby::app
