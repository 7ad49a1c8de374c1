// SPDX-License-Identifier: MIT
#pragma once

#include <QDate>
#include <QString>

#include <optional>

/// Reading and summing purchases. Nothing here knows of a window.
namespace harrowby::report {

/// Days from the first to the last one, both within.
struct Period
{
    QDate from;
    QDate to;

    bool operator==(const Period &) const = default;
    [[nodiscard]] qint64 days() const { return from.daysTo(to) + 1; }
};

[[nodiscard]] Period today(const QDate &now);
/// Monday to Sunday.
[[nodiscard]] Period thisWeek(const QDate &now);
/// The whole calendar month.
[[nodiscard]] Period thisMonth(const QDate &now);

/// Purchases carry two digits of their year: these are the days that can be told apart.
[[nodiscard]] QDate firstDay();
[[nodiscard]] QDate lastDay();

/// "yyMMdd", as a purchase's date begins; and back, empty when it is no day.
[[nodiscard]] QString dayKey(const QDate &day);
[[nodiscard]] std::optional<QDate> dayOfKey(const QString &key);

/// "1 Nov 2026 to 30 Nov 2026", or the one day.
[[nodiscard]] QString periodText(const Period &period);

} // namespace harrowby::report
