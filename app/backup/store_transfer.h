// SPDX-License-Identifier: MIT
#pragma once

#include "app/copy/store_copy.h"

#include <QHash>
#include <QString>
#include <QStringList>

namespace harrowby::app {

/// How a copy of a whole store has ended.
struct TransferEnd
{
    enum class Outcome {
        Done,
        Stopped,
        NotOpened,   ///< one of the stores cannot be used
        RowsRefused, ///< a server cannot hold all rows
        Failed,
    };
    Outcome outcome = Outcome::Failed;
    QString problem = {}; ///< in words for a person, unless it is done or stopped
    UnfitRows unfit = {};
    QHash<QString, std::int64_t> rows = {}; ///< that the copy holds, by table
    QStringList left = {};                  ///< what the file holds besides, and was not copied
};

/// Copies the store in a file to a server whose store is empty, in one transaction of the server's. Nobody has either
/// of them open, and nobody can open the file meanwhile. Nothing is written before every row was looked at; the file
/// stays as it is.
[[nodiscard]] TransferEnd copyFileToServer(const QString &file, const QString &server, const WorkWatch &watch);

/// Copies a server's store, which nobody has open, to a new file. When somebody has opened it meanwhile, there is none.
[[nodiscard]] TransferEnd copyServerToFile(const QString &server, const QString &file, const WorkWatch &watch);

} // namespace harrowby::app
