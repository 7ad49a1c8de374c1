// SPDX-License-Identifier: MIT
#pragma once

#include "bench/stopwatch.h"

#include <QObject>
#include <QTimer>

namespace harrowby::bench {

/// How long a window leaves its user waiting: the longest time between two events that it answers; where it waits for
/// a server under a sign, a picture counts as an answer.
class AnswerWatch final : public QObject
{
public:
    explicit AnswerWatch(bool waitsUnderASign);

    /// The longest wait since the watch was made, the one that is under way counted in.
    [[nodiscard]] double longestMs() const;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void answered();

    QTimer m_timer;
    Stopwatch m_sinceLast;
    double m_longestMs = 0.0;
};

} // namespace harrowby::bench
