// SPDX-License-Identifier: MIT
#pragma once

#include "app/activity/activity_search.h"
#include "app/export/export.h"

#include <QDate>
#include <QString>

namespace harrowby::app {

/// Writes what the filter finds as a CSV file, newest first: Time, Kind, User, Place, What. As exportRows(), on any
/// thread.
[[nodiscard]] ExportEnd exportActivity(const QString &store, const QString &target, const CsvForm &form,
                                       const ActivityFilter &filter, const WorkWatch &watch);

/// "activity-2026-11-22.csv", "activity-2026-11-01-to-2026-11-30.csv"
[[nodiscard]] QString proposedActivityName(const ActivityDays &days, const QDate &today);

/// For the table of who did what: "Activity, 1,234 rows, to /home/shop/activity.csv".
[[nodiscard]] QString activityDeedWords(const ExportEnd &end, const QString &target);

} // namespace harrowby::app
