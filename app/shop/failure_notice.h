// SPDX-License-Identifier: MIT
#pragma once

#include "basic/result.h"

#include <harrowby/db_connection.h>
#include <harrowby/file_failure.h>

#include <QDateTime>
#include <QFrame>
#include <QList>
#include <QPoint>
#include <QSet>
#include <QString>
#include <QTimer>

class QLabel;

namespace harrowby::app {

/// A message of the failure notice that does not come from a failed statement.
struct Notice
{
    QString subject; ///< identifies what it is about; never shown
    QString work;    ///< what was not done, in one sentence
    QString reason;
    QString advice;         ///< what to do about it
    bool isCounted = false; ///< says how often it has happened
    bool isOfData = true;   ///< something was not saved; otherwise it was not done
    enum class Outcome {
        NotDone,
        NotKnown, ///< nobody can say yet whether it was done
        Settled,  ///< that was so, and is known now
    };
    Outcome outcome = Outcome::NotDone;
};

/// The failure notice: a small window that says which writes failed, when, why, and what to do. It takes no focus,
/// covers no total, and stays until it is dismissed; further failures are added to it. Hidden until the first failure.
class FailureNotice final : public QFrame
{
    Q_OBJECT

public:
    FailureNotice();

    /// Shows a failed write; a failed read only leaves a list empty, and the log tells of it. Never enters an event
    /// loop, so it may be called in the middle of a sale.
    void add(const DbFailure &failure) noexcept;

    /// Shows a write of which nobody can say yet whether it was done.
    void addDoubtful(const DbFailure &failure) noexcept;
    /// What became of it in the end: takes the place of what was shown, and is shown also when that was dismissed.
    void settle(const QString &statement, bool isDone) noexcept;
    /// The same in other words.
    void settle(const QString &statement, const QString &work, const QString &advice) noexcept;
    /// What is shown by these words is so no more, once. The window shows it until something else is shown.
    void forget(const QString &work) noexcept;

    /// Shows a notice, once for each subject and reason: after it was dismissed, the same one is shown again only after
    /// tellOver() of its subject.
    void tell(const Notice &notice) noexcept;
    /// Shows a failure outside the database, or notes that it is over.
    void add(const FileFailure &failure) noexcept;
    /// Shows why the log file cannot be written, or notes that it can be again.
    void addLog(const QString &path, const Result<void, QString> &outcome) noexcept;
    /// Allows notices of this subject again. The window keeps what it shows.
    void tellOver(const QString &subject) noexcept;

public Q_SLOTS:
    /// Hides the window and forgets what it showed.
    void dismiss();

private:
    struct Line
    {
        Notice notice;
        int count = 0;
    };

    void layOut();
    void present(const Notice &notice);
    void note(const Notice &notice);
    [[nodiscard]] QString heading() const;
    void showLines();
    void keepClear();

    QList<Line> m_lines;
    QSet<std::pair<QString, QString>> m_told; ///< subject and reason
    QDateTime m_first;
    QLabel *m_heading = nullptr;
    QLabel *m_work = nullptr;
    QLabel *m_reason = nullptr;
    QLabel *m_advice = nullptr;
    QTimer m_place;
    QPoint m_askedFor; ///< where it was last moved to; a window manager may have put it elsewhere
};

} // namespace harrowby::app
