// SPDX-License-Identifier: MIT
#pragma once

#include "app/catalogue/import_lines.h"
#include "app/catalogue/known_codes.h"
#include "app/catalogue/repeats.h"
#include "app/work/work_step.h"

#include <QHash>
#include <QString>

#include <optional>

namespace harrowby::app {

/// The columns of importColumns(ImportKind::Items).
enum ItemColumn {
    IdColumn,
    NameColumn,
    CategoryColumn,
    CostColumn,
    LevelColumn,
    AvailableColumn,
    UseColumn,
    CodeColumn,
};

/// Whether the items that are there already keep their stock in hand, whatever this column says.
[[nodiscard]] inline bool leavesStock(int column, const ImportChoices &choices)
{
    return column == AvailableColumn && !choices.stockInHand;
}

/// The part of an item that such a column brings; ID and code are none.
[[nodiscard]] constexpr int partOf(int column)
{
    return column - 1;
}

/// Which item a row is about.
struct ItemKey
{
    QString id;      ///< empty where neither ID nor code finds one
    QString problem; ///< why the code finds none, in words; else empty
};

/// What stands more than once in a file of items. Read before its rows are judged, as each of two rows with one key is
/// refused.
class ItemCensus
{
public:
    /// Reads the file through; false when it was stopped. `codes` is null where the file has no codes; it is loaded.
    [[nodiscard]] Records::Answer<bool> take(const ImportFile &file, const ImportChoices &choices, KnownCodes *codes,
                                             const WorkWatch &watch);

    [[nodiscard]] ItemKey keyOf(const ImportLine &line) const;

    [[nodiscard]] Repeats keys(const QString &id) const { return m_keys.value(id); }
    /// IDs with these capitals, whatever letters they have.
    [[nodiscard]] Repeats keysLike(const QString &capitals) const;
    /// In capitals.
    [[nodiscard]] Repeats names(const QString &name) const { return m_names.value(name); }
    /// In any length of the same number.
    [[nodiscard]] Repeats codes(const QString &code) const { return m_codes.value(longestSpelling(code)); }

private:
    [[nodiscard]] std::optional<DbFailure> count(const QList<ImportLine> &piece, KnownCodes *codes);

    QHash<QString, Repeats> m_keys;
    QHash<QString, Repeats> m_smallKeys; ///< of the keys those with small letters, by their capitals
    QHash<QString, Repeats> m_names;
    QHash<QString, Repeats> m_codes;
    QHash<qint64, ItemKey> m_byCode; ///< of the rows that have a code and no ID, by line
};

} // namespace harrowby::app
