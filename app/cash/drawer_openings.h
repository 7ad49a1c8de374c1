// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/records.h"

#include <QDateTime>
#include <QString>

namespace harrowby::app {

/// The drawer, opened by a person and not by a sale.
struct DrawerOpening
{
    QDateTime when;
    QString user;
    QString drawer;
    QString reason;
};

/// Adds it to the table HarrowbyDrawerOpening, which nothing ever changes or deletes. False when it could not be
/// written, which the records have told.
[[nodiscard]] bool recordOpening(Records &records, const DrawerOpening &opening);

/// What was typed as a reason: no control characters, no needless blanks, 200 characters at most.
[[nodiscard]] QString openingReason(const QString &typed);

} // namespace harrowby::app
