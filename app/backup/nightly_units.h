// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QTime>

#include <optional>

/// The two files by which systemd makes a backup every day: what stands in them, and what is read back from them.
namespace harrowby::app {

struct NightlyPlan
{
    QTime time = QTime(22, 0); ///< of the day, local
    QString folder;            ///< absolute
    int keep = 14;             ///< how many backups stay

    friend bool operator==(const NightlyPlan &, const NightlyPlan &) = default;
};

/// What is run, for which store: an absolute path, or a server's target, without a password as the files may be read
/// by others.
struct NightlyJob
{
    QString program; ///< absolute
    QString store;
};

/// One word of a command line in a unit file: in double quotes, with what systemd takes for an escape, a specifier or,
/// behind the program's own path, a variable written twice.
enum class UnitWord {
    Program,
    Argument,
};
[[nodiscard]] QString quotedForUnit(const QString &text, UnitWord word);

/// Whether it can stand in a unit file: no line break or other control character.
[[nodiscard]] bool fitsUnit(const QString &text);

[[nodiscard]] QString nightlyServiceText(const NightlyJob &job, const NightlyPlan &plan);
[[nodiscard]] QString nightlyTimerText(const NightlyJob &job, const NightlyPlan &plan);

/// What the timer's file says; nothing when it is none of ours.
struct ReadNightly
{
    NightlyPlan plan;
    QString program; ///< that it runs
};
[[nodiscard]] std::optional<ReadNightly> readNightlyTimer(const QString &text);

/// The same as a line for cron, for a machine without systemd.
[[nodiscard]] QString nightlyCronLine(const NightlyJob &job, const NightlyPlan &plan);

} // namespace harrowby::app
