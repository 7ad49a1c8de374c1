// SPDX-License-Identifier: MIT
#pragma once

#include "app/work/work_step.h"
#include "basic/result.h"

#include <QDateTime>
#include <QString>
#include <QStringList>

namespace harrowby::app {

class Records;

/// By what a person knows one state of a store from another.
struct StoreContents
{
    qint64 items = 0;
    qint64 purchases = 0;
    QDateTime lastPurchase; ///< local time; invalid where there is none whose date can be read
    QStringList users;      ///< their names as stored, by name
    QDateTime written;      ///< the file's own time; invalid for an open store
};

[[nodiscard]] StoreContents contentsOf(Records &store);

/// Judges a backup by the rules by which a store is opened, and tells what it holds; or why it cannot be used, in words
/// for a person. The check of a big file is cut short here, and done to its end by the restore.
[[nodiscard]] Result<StoreContents, QString> lookIntoBackup(const QString &file);

} // namespace harrowby::app
