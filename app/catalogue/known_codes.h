// SPDX-License-Identifier: MIT
#pragma once

#include "app/catalogue/import_shelf.h"
#include "app/codes/code_table.h"
#include "app/records/records.h"

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <optional>

namespace harrowby::app {

/// A row of HarrowbyCode as it stands there.
struct KnownCode
{
    RecordValue code;
    RecordValue stockId;
    RecordValue units;
    QString itemName;
    bool isOrphan = false;
};

/// All spellings of a code: of a trade item number every length, else itself.
[[nodiscard]] QStringList spellingsOf(const QString &code);

/// Of all spellings the longest; with the zeros that a spreadsheet has taken away.
[[nodiscard]] QString longestSpelling(const QString &code);

/// A code that comes with a row, in every length.
[[nodiscard]] StagedCode newCode(qint64 line, const QString &code, const QString &stockId, std::int64_t units);

/// The codes that the store has, and which IDs of items are codes, too. Asked by pieces of a file.
class KnownCodes
{
public:
    /// The records must outlive it.
    explicit KnownCodes(Records &records) : m_records(records) {}

    /// All codes.
    [[nodiscard]] std::optional<DbFailure> load();
    /// Which of these codes are IDs of items, in any length.
    [[nodiscard]] std::optional<DbFailure> lookUp(const QStringList &codes);

    /// Whose code it is, as a scan would find it: an ID; or why nobody's, in words; or neither for a new one.
    struct Owner
    {
        QString stockId;
        QString problem;
    };
    [[nodiscard]] Owner ownerOf(const QString &cell) const;

    /// The code with the zeros that a spreadsheet has taken away where only that one is known; else as it is.
    [[nodiscard]] QString meant(const QString &code) const;

    /// The rows of the store with this very code.
    [[nodiscard]] QList<KnownCode> rowsOf(const QString &code) const { return m_rows.value(code); }
    /// Whether the item has the code already, in any length, or it is the item's own ID.
    [[nodiscard]] bool has(const QString &stockId, const QString &code) const;
    /// Why the code cannot be added to the item, as CodeTable has it; nothing when it can.
    [[nodiscard]] std::optional<QString> takenBy(const QString &code, const QString &stockId) const;

private:
    [[nodiscard]] QList<ItemCode> entriesOf(const QString &code) const;
    [[nodiscard]] QList<StockItem> itemsOf(const QString &code) const;

    Records &m_records;
    QHash<QString, QList<KnownCode>> m_rows; ///< by code
    QHash<QString, StockItem> m_items;       ///< by ID, of the codes that were looked up last
};

} // namespace harrowby::app
