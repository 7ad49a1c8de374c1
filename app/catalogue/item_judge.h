// SPDX-License-Identifier: MIT
#pragma once

#include "app/catalogue/automatic_ids.h"
#include "app/catalogue/import_shelf.h"
#include "app/catalogue/item_census.h"
#include "app/catalogue/known_categories.h"
#include "app/catalogue/new_ids.h"
#include "basic/stock_entry_rules.h"

#include <QHash>
#include <QList>
#include <QString>

#include <optional>

namespace harrowby::app {

/// Says of each row of a file of items what becomes of it: it compares the row with the store, and holds what is new or
/// changed against the stock form's rules and the till's.
class ItemJudge
{
public:
    /// All must outlive it; `codes` is null where the file has none.
    ItemJudge(Records &records, const ImportLines &lines, const ImportChoices &choices, const ItemCensus &census,
              KnownCategories &categories, KnownCodes *codes);

    /// The next rows of the file, in its order.
    [[nodiscard]] Records::Answer<StagedPiece> judge(const QList<ImportLine> &lines);

private:
    struct Fault
    {
        int column = 0;
        QString reason;
    };
    /// An item of the store: StockID and its ten other columns.
    using Item = RecordRow;
    /// What a row would write.
    struct Change
    {
        StockEntry entry; ///< what the row does not bring is faultless
        int mask = 0;     ///< the parts that it brings and that differ
        QString newCode;  ///< to be added; else empty
        bool isNew = false;
    };

    [[nodiscard]] std::optional<DbFailure> lookUp(const QList<ImportLine> &lines);
    [[nodiscard]] std::optional<DbFailure> lookUpNewIds(const QList<ImportLine> &lines);
    [[nodiscard]] QString idOf(const ImportLine &line) const;
    [[nodiscard]] std::optional<DbFailure> lookUpNames(const QList<ImportLine> &lines);
    [[nodiscard]] bool needsName(const ImportLine &line) const;
    [[nodiscard]] std::optional<DbFailure> judgeLine(const ImportLine &line, StagedPiece &piece);
    [[nodiscard]] std::optional<DbFailure> judgeNew(const ImportLine &line, const QString &id, StagedPiece &piece);
    [[nodiscard]] StagedRow judgeChange(const ImportLine &line, const Item &item, StagedPiece &piece);
    [[nodiscard]] StagedRow asStored(const ImportLine &line) const;

    [[nodiscard]] bool takeEqual(const ImportLine &line, const QString &id);
    [[nodiscard]] bool equalsOneWithoutId(const ImportLine &line, const QList<Item> &items) const;
    [[nodiscard]] bool isEqual(const ImportLine &line, const Item &item) const;
    [[nodiscard]] bool hasExactValue(const ImportLine &line, int column) const;
    [[nodiscard]] bool differs(const ImportLine &line, int column, const Item &item) const;
    [[nodiscard]] bool isBrought(const ImportLine &line, int column) const;

    [[nodiscard]] Change changeOf(const ImportLine &line, const Item *item, const QString &id) const;
    void bring(const ImportLine &line, int column, StockEntry &entry) const;
    [[nodiscard]] QString newText(const QString &cell) const;
    [[nodiscard]] QString newFigure(const ImportLine &line, int column) const;

    [[nodiscard]] std::optional<Fault> faultOf(const ImportLine &line, const Change &change) const;
    [[nodiscard]] std::optional<Fault> entryFault(const ImportLine &line, const StockEntry &entry) const;
    [[nodiscard]] std::optional<Fault> idFault(const Change &change) const;
    [[nodiscard]] std::optional<Fault> nameFault(const Change &change) const;
    [[nodiscard]] std::optional<Fault> categoryFault(const Change &change) const;
    [[nodiscard]] std::optional<Fault> codeFault(const Change &change) const;

    [[nodiscard]] StagedRow refused(const ImportLine &line, int column, const QString &reason) const;
    void addCode(const ImportLine &line, const Change &change, StagedPiece &piece) const;

    Records &m_records;
    const ImportLines &m_lines;
    const ImportChoices &m_choices;
    const ItemCensus &m_census;
    KnownCategories &m_categories;
    KnownCodes *m_codes;
    AutomaticIds m_automaticIds;
    NewIds m_newIds;
    QHash<QString, QList<Item>> m_items;    ///< of this piece, by ID
    QHash<QString, QList<Item>> m_byName;   ///< of this piece, by name in capitals
    QHash<QString, QList<Item>> m_unpaired; ///< of repeated keys those items that no row was equal to yet
};

/// A value as the tables of staged rows keep it: a number by its digits, all else as it is.
[[nodiscard]] RecordValue stagedValue(const RecordValue &stored);
/// What is written of an item, in the order of its parts.
[[nodiscard]] std::array<RecordValue, importedParts> freshParts(const harrowby::StockItem &item);

} // namespace harrowby::app
