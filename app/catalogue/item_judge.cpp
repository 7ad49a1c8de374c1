// SPDX-License-Identifier: MIT
#include "app/catalogue/item_judge.h"

#include "app/catalogue/import_columns.h"
#include "app/catalogue/import_words.h"
#include "app/records/statement_pieces.h"
#include "basic/reserved_categories.h"
#include "basic/stock_id.h"
#include "basic/text.h"

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

const QString itemSelect =
    u"select StockID, StockName, StockCategory, StockCost, StockReorderLevel, StockAvailable, StockUse, "
    "StockLastUpdated, StockLastModified, StockAdded, StockReorderUser from StockList where "_s;

/// SQLite puts no letters but those of English in capitals; the stock form compares by its capitals.
QString englishCapitals(const QString &name)
{
    QString capitals = name;
    for (QChar &c : capitals) {
        if (c >= u'a' && c <= u'z')
            c = c.toUpper();
    }
    return capitals;
}

QString itemsWords(const RecordRow &item)
{
    return itemWords(recordText(item.at(1)), recordText(item.at(0)));
}

} // namespace

ItemJudge::ItemJudge(Records &records, const ImportLines &lines, const ImportChoices &choices, const ItemCensus &census,
                     KnownCategories &categories, KnownCodes *codes) :
    m_records(records),
    m_lines(lines), m_choices(choices), m_census(census), m_categories(categories), m_codes(codes),
    m_automaticIds(
        records,
        [&census](const QString &id) { return census.keysLike(id.toUpper()).rows > 0 || census.codes(id).rows > 0; }),
    m_newIds(records, census)
{
}

Records::Answer<StagedPiece> ItemJudge::judge(const QList<ImportLine> &lines)
{
    StagedPiece piece;
    piece.rows.reserve(lines.size());
    std::optional<DbFailure> failure = m_choices.asStored ? std::nullopt : lookUp(lines);
    for (const ImportLine &line : lines) {
        if (failure)
            return Unexpected(*failure);
        if (line.hasFault())
            piece.rows << refused(line, -1, line.fault);
        else if (m_choices.asStored)
            piece.rows << asStored(line);
        else
            failure = judgeLine(line, piece);
    }
    return piece;
}

std::optional<DbFailure> ItemJudge::lookUp(const QList<ImportLine> &lines)
{
    m_items.clear();
    m_byName.clear();
    QList<RecordValue> ids;
    QStringList codes;
    for (const ImportLine &line : lines) {
        if (line.hasFault())
            continue;
        if (const QString id = m_census.keyOf(line).id; !id.isEmpty()) {
            ids << id;
            if (const QString capitals = id.toUpper(); m_choices.putIntoCapitals && capitals != id)
                ids << capitals;
        }
        if (const QString code = cellOf(line, CodeColumn); m_codes != nullptr && !code.isEmpty())
            codes << code;
    }
    if (!ids.isEmpty()) {
        const auto items =
            m_records.read({itemSelect + u"StockID in (%1) order by StockID"_s.arg(placesFor(ids.size())), ids});
        if (!items)
            return items.error();
        for (const Item &item : *items)
            m_items[recordText(item.at(0))] << item;
    }
    if (m_codes != nullptr) {
        if (auto failure = m_codes->lookUp(codes))
            return failure;
    }
    if (auto failure = lookUpNewIds(lines))
        return failure;
    return lookUpNames(lines);
}

/// As the store has it; else as a new item gets it.
QString ItemJudge::idOf(const ImportLine &line) const
{
    const QString id = m_census.keyOf(line).id;
    return m_choices.putIntoCapitals && !m_items.contains(id) ? id.toUpper() : id;
}

std::optional<DbFailure> ItemJudge::lookUpNewIds(const QList<ImportLine> &lines)
{
    QStringList ids;
    for (const ImportLine &line : lines) {
        if (const QString id = line.hasFault() ? QString() : idOf(line); !id.isEmpty() && !m_items.contains(id))
            ids << id;
    }
    return m_newIds.lookUp(ids);
}

bool ItemJudge::needsName(const ImportLine &line) const
{
    if (line.hasFault() || cellOf(line, NameColumn).isEmpty())
        return false;
    const QList<Item> items = m_items.value(idOf(line));
    return items.size() != 1 || differs(line, NameColumn, items.constFirst());
}

std::optional<DbFailure> ItemJudge::lookUpNames(const QList<ImportLine> &lines)
{
    QSet<QString> names;
    for (const ImportLine &line : lines) {
        if (needsName(line)) {
            const QString name = cellOf(line, NameColumn);
            names << name.toUpper() << englishCapitals(name);
        }
    }
    if (names.isEmpty())
        return {};
    const QList<RecordValue> values(names.begin(), names.end());
    const auto items =
        m_records.read({itemSelect + u"UPPER(StockName) in (%1)"_s.arg(placesFor(values.size())), values});
    if (!items)
        return items.error();
    for (const Item &item : *items)
        m_byName[recordText(item.at(1)).toUpper()] << item;
    return {};
}

StagedRow ItemJudge::refused(const ImportLine &line, int column, const QString &reason) const
{
    StagedRow row;
    row.line = line.line;
    row.stockId = m_census.keyOf(line).id;
    row.fresh[NamePart] = cellOf(line, NameColumn);
    row.column = column < 0 ? line.column : m_lines.heading(column);
    row.reason = reason;
    return row;
}

StagedRow ItemJudge::asStored(const ImportLine &line) const
{
    StagedRow row;
    row.line = line.line;
    row.what = RowKind::New;
    for (int part = -1; part < itemParts; ++part) {
        const StoredValue &stored = line.stored.at(part + 1);
        if (stored.isText)
            row.bytesOfTexts << part;
        (part < 0 ? row.stockId : row.fresh.at(static_cast<std::size_t>(part))) = stagedValue(stored.value);
    }
    return row;
}

std::optional<DbFailure> ItemJudge::judgeLine(const ImportLine &line, StagedPiece &piece)
{
    const ItemKey key = m_census.keyOf(line);
    const auto keep = [&](const StagedRow &row) {
        piece.rows << row;
        return std::nullopt;
    };
    const auto unchanged = [&] {
        StagedRow row = refused(line, IdColumn, {});
        row.what = RowKind::Unchanged;
        row.column.clear();
        row.isRepeated = key.id.isEmpty() || m_census.keys(key.id).rows > 1;
        return keep(row);
    };
    const QString id = idOf(line);
    const QList<Item> items = m_items.value(id);
    const Repeats repeats = m_choices.putIntoCapitals ? m_census.keysLike(id.toUpper()) : m_census.keys(id);
    if (!key.problem.isEmpty())
        return keep(refused(line, CodeColumn, key.problem));
    if (key.id.isEmpty()) {
        const QList<Item> same = m_byName.value(cellOf(line, NameColumn).toUpper());
        if (equalsOneWithoutId(line, same))
            return unchanged();
        if (!same.isEmpty())
            return keep(refused(line, NameColumn,
                                u"%1 is in the store. A name alone finds no item: give its ID or a code."_s.arg(
                                    itemsWords(same.constFirst()))));
        return judgeNew(line, {}, piece);
    }
    if (repeats.rows > 1 || items.size() > 1) {
        if (takeEqual(line, id))
            return unchanged();
        return keep(refused(line, cellOf(line, IdColumn).isEmpty() ? CodeColumn : IdColumn,
                            repeats.rows > 1 ? repeatsWords(key.id, repeats)
                                             : u"The store has %1 items of this ID."_s.arg(items.size())));
    }
    return items.isEmpty() ? judgeNew(line, id, piece) : keep(judgeChange(line, items.constFirst(), piece));
}

/// Compared as a set: each item of the store makes one row of the file an unchanged one.
bool ItemJudge::takeEqual(const ImportLine &line, const QString &id)
{
    auto found = m_unpaired.find(id);
    if (found == m_unpaired.end())
        found = m_unpaired.insert(id, m_items.value(id));
    const auto equal = std::ranges::find_if(*found, [&](const Item &item) { return isEqual(line, item); });
    if (equal == found->end())
        return false;
    found->erase(equal);
    return true;
}

bool ItemJudge::equalsOneWithoutId(const ImportLine &line, const QList<Item> &items) const
{
    return std::ranges::any_of(
        items, [&](const Item &item) { return recordText(item.at(0)).isEmpty() && isEqual(line, item); });
}

bool ItemJudge::isEqual(const ImportLine &line, const Item &item) const
{
    const Change change = changeOf(line, &item, recordText(item.at(0)));
    return change.mask == 0 && change.newCode.isEmpty();
}

StagedRow ItemJudge::judgeChange(const ImportLine &line, const Item &item, StagedPiece &piece)
{
    const Change change = changeOf(line, &item, recordText(item.at(0)));
    if (const auto fault = faultOf(line, change))
        return refused(line, fault->column, fault->reason);
    StagedRow row;
    row.line = line.line;
    row.stockId = recordText(item.at(0));
    row.mask = change.mask;
    row.what = change.mask == 0 && change.newCode.isEmpty() ? RowKind::Unchanged : RowKind::Changed;
    if (row.what == RowKind::Unchanged) {
        row.fresh[NamePart] = recordText(item.at(1));
        return row;
    }
    const std::array<RecordValue, importedParts> fresh = freshParts(stockItem(change.entry));
    for (int part = 0; part < itemParts; ++part) {
        const auto place = static_cast<std::size_t>(part);
        row.old[place] = stagedValue(item.at(part + 1));
        if (part < importedParts)
            row.fresh[place] = (change.mask & maskOf(part)) != 0 ? fresh.at(place) : row.old.at(place);
    }
    if ((change.mask & maskOf(CategoryPart)) != 0 && !m_categories.has(change.entry.category))
        m_categories.make(change.entry.category);
    addCode(line, change, piece);
    return row;
}

std::optional<DbFailure> ItemJudge::judgeNew(const ImportLine &line, const QString &id, StagedPiece &piece)
{
    Change change = changeOf(line, nullptr, id);
    const bool isAutomatic = id.isEmpty();
    if (isAutomatic)
        change.entry.id = automaticIdText; // as the stock form has it until the item is saved
    auto fault = faultOf(line, change);
    if (!fault && isAutomatic) {
        const auto automatic = m_automaticIds.next(change.entry.category);
        if (!automatic)
            return automatic.error();
        change.entry.id = *automatic;
        if (automatic->isEmpty())
            fault = Fault{IdColumn, u"There is no automatic ID left for this category."_s};
    }
    if (!fault)
        fault = codeFault(change);
    if (fault) {
        piece.rows << refused(line, fault->column, fault->reason);
        return {};
    }
    StagedRow row;
    row.line = line.line;
    row.what = RowKind::New;
    row.stockId = change.entry.id;
    const std::array<RecordValue, importedParts> fresh = freshParts(stockItem(change.entry));
    std::copy(fresh.begin(), fresh.end(), row.fresh.begin());
    if (!m_categories.has(change.entry.category))
        m_categories.make(change.entry.category);
    piece.rows << row;
    addCode(line, change, piece);
    return {};
}

void ItemJudge::addCode(const ImportLine &line, const Change &change, StagedPiece &piece) const
{
    if (!change.newCode.isEmpty())
        piece.codes << newCode(line.line, change.newCode, change.entry.id, 1);
}

} // namespace harrowby::app
