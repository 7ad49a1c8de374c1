// SPDX-License-Identifier: MIT
#pragma once

#include <harrowby/db_connection.h>

#include <QDateTime>
#include <QFrame>
#include <QList>
#include <QPoint>
#include <QTimer>

class QLabel;

namespace harrowby::app {

/// A small window that says which changes failed, when, and what to do. It takes no focus, keeps clear of the totals,
/// and stays until it is dismissed; what fails while it is there is counted in it. Hidden until the first failure.
class FailureNotice final : public QFrame
{
    Q_OBJECT

public:
    FailureNotice();

    /// Shows a failed write; a failed read only leaves a list empty, and the log tells of it. Never enters an event
    /// loop, so it may be called in the middle of a sale.
    void add(const DbFailure &failure) noexcept;

public Q_SLOTS:
    /// Hides the window and forgets what it showed.
    void dismiss();

private:
    struct Line
    {
        QString work;
        int count = 0;
    };

    void layOut();
    void note(const DbFailure &failure);
    void showLines(const DbFailure &failure);
    void keepClear();

    QList<Line> m_lines;
    QDateTime m_first;
    QLabel *m_heading = nullptr;
    QLabel *m_work = nullptr;
    QLabel *m_reason = nullptr;
    QLabel *m_advice = nullptr;
    QTimer m_place;
    QPoint m_askedFor; ///< where it was last moved to; a window manager may have put it elsewhere
};

} // namespace harrowby::app
