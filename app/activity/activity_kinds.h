// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QString>

#include <optional>

namespace harrowby::app {

/// What a person looks for. Each entry is of one kind.
enum class ActivityKind {
    Login,
    LoginRefused,
    Sale,
    PriceByHand,
    Deletion, ///< items, categories, and purchases that were taken back
    Drawer,
    Users, ///< added, their rights, types and passwords
    Cart,
    Stock,
    StockNotChanged, ///< by a sale, as no item had that ID and name any more
    Settings,
    Catalogue, ///< imports, exports, codes, labels
    Safety,    ///< backups and restores
    Other,
};

struct ActivityKindWords
{
    ActivityKind kind;
    QString id;    ///< as in a file
    QString title; ///< for a person
};

/// All of them, in the order in which they are offered.
[[nodiscard]] const QList<ActivityKindWords> &activityKinds();
[[nodiscard]] QString titleOf(ActivityKind kind);

/// The kind of a deed as it is stored; Other for one that this version does not know.
[[nodiscard]] ActivityKind kindOfDeed(const QString &stored);

/// What a line of the till's log says.
struct LogMeaning
{
    ActivityKind kind = ActivityKind::Other;
    QString who; ///< only where the text itself names the user: several tills write into one log
};
[[nodiscard]] LogMeaning meaningOfLog(const QString &text);

/// Whether the till's log has lines of this kind.
[[nodiscard]] bool isInLog(ActivityKind kind);
/// The only texts of the till's log that name this user.
[[nodiscard]] QStringList logTextsOf(const QString &user);

} // namespace harrowby::app
