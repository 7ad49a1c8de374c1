// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/records.h"

#include <QString>
#include <QStringList>

struct sqlite3;

namespace harrowby::app::test {

/// Rows in every table of a store that has none: with gaps between their identities, nulls, texts of all alphabets and
/// figures of all kinds; all of which a server can hold.
void fillEveryTable(sqlite3 *store);

/// A store file with such rows.
void makeFullStore(const QString &path);

/// All rows of every table as text, in an order that depends on what they hold alone.
[[nodiscard]] QStringList everyRow(Records &store);
[[nodiscard]] QStringList everyRow(const QString &path);

} // namespace harrowby::app::test
