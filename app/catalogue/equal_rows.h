// SPDX-License-Identifier: MIT
#pragma once

#include "app/catalogue/import_lines.h"
#include "app/catalogue/import_types.h"
#include "app/records/records.h"

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>

#include <optional>

namespace harrowby::app {

/// The rows of an export of our own that stand in the store as they are, whatever odd values they hold. The judges
/// compare what a person means by a cell; this compares the very values, so that such a row is never refused.
///
/// The whole table is read when the first row needs it: a usual one never does.
class EqualRows
{
public:
    /// All must outlive it.
    EqualRows(Records &records, const ImportLines &lines, const ImportChoices &choices);

    /// Whether the row may hold what no judge understands.
    [[nodiscard]] bool isOdd(const ImportLine &line) const;
    enum class Found {
        None,
        Equal, ///< a row of the store equals it in all columns that the import brings, and is taken for it
        Taken, ///< each such row was taken by another one of the file
    };
    [[nodiscard]] Records::Answer<Found> take(const ImportLine &line);

private:
    [[nodiscard]] std::optional<DbFailure> load();

    Records &m_records;
    ImportKind m_kind;
    bool m_isExport;
    bool m_isLoaded = false;
    QList<int> m_columns;          ///< of the export, those that are compared
    QHash<QByteArray, int> m_rows; ///< of the store, how often each is not taken yet
};

} // namespace harrowby::app
