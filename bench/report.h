// SPDX-License-Identifier: MIT
#pragma once

#include <QJsonArray>
#include <QString>

#include <optional>
#include <vector>

namespace harrowby::bench {

/// One line of the table. What was not measured stays empty; a line without a limit is there for comparison.
struct Line
{
    QString work;
    qint64 items = 0;
    std::optional<double> medianMs;
    std::optional<double> rawMs; ///< the same statements, run by hand
    std::optional<double> ratio;
    std::optional<double> limit; ///< the largest ratio allowed; of memory the largest number of MB, and of a line
                                 ///< without a ratio the longest time
    std::optional<double> megabytes;
    QString place = {}; ///< MeasuredStore::place()

    [[nodiscard]] bool isOver() const;
};

/// The table, aligned for a terminal.
[[nodiscard]] QString toText(const std::vector<Line> &lines);
[[nodiscard]] QJsonArray toJson(const std::vector<Line> &lines);

} // namespace harrowby::bench
