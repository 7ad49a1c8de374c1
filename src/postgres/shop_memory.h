// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QUuid>

#include <QtGlobal>

/// What this machine remembers of a store on a server, in a folder of the store's: the actions (action_journal.h), and
/// the highest timeline that a program has worked on. A server on a lower one has been replaced meanwhile, and a
/// program that is started anew must know it, too: the old one may be all that it reaches.
namespace harrowby::postgres {

/// PostgresOptions::stateFolder, or where that is empty.
[[nodiscard]] QString stateFolder(const QString &chosen);
/// Below it.
[[nodiscard]] QString folderOf(const QUuid &store, const QString &stateFolder);

/// 0 when none has been noted.
[[nodiscard]] quint32 highestTimeline(const QUuid &store, const QString &stateFolder);
/// Several programs may note theirs at once; the highest counts. What cannot be noted is logged.
void noteTimeline(const QUuid &store, quint32 timeline, const QString &stateFolder);

} // namespace harrowby::postgres
