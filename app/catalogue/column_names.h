// SPDX-License-Identifier: MIT
#pragma once

#include "app/catalogue/import_columns.h"

#include <QList>
#include <QStringList>

namespace harrowby::app {

/// A column and what else it is called in files, without capitals, blanks and signs.
struct KnownColumn
{
    ImportColumn column;
    QStringList otherNames;
    QStringList plainNames = {}; ///< that go before the words a person reads, as those may say something else in a file
};

/// The columns of a kind, in the order of importColumns().
[[nodiscard]] const QList<KnownColumn> &knownColumns(ImportKind kind);

/// Of what a customer pays.
[[nodiscard]] bool isThePrice(const KnownColumn &column);
/// "Price incl. VAT": a heading whose words are not known, but speak of what a customer pays, and not of what the shop
/// does. Without capitals, blanks and signs.
[[nodiscard]] bool mayBeAPrice(const QString &key);

} // namespace harrowby::app
