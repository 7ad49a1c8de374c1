// SPDX-License-Identifier: MIT
#include "app/catalogue/known_codes.h"

#include "app/codes/code_text.h"
#include "app/codes/gtin.h"

#include <QSet>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

ItemCode itemCode(const KnownCode &known)
{
    ItemCode entry;
    entry.code = recordText(known.code);
    entry.stockId = recordText(known.stockId);
    entry.name = known.itemName;
    entry.isOrphan = known.isOrphan;
    return entry;
}

} // namespace

QStringList spellingsOf(const QString &code)
{
    const QStringList spellings = gtinSpellings(code);
    return spellings.isEmpty() ? QStringList{code} : spellings;
}

QString longestSpelling(const QString &code)
{
    const QString whole = withLostZeros(code);
    return spellingsOf(whole.isEmpty() ? code : whole).constLast();
}

StagedCode newCode(qint64 line, const QString &code, const QString &stockId, std::int64_t units)
{
    StagedCode staged;
    staged.line = line;
    staged.code.value = code;
    staged.stockId.value = stockId;
    staged.units = units;
    staged.spellings = spellingsOf(code);
    staged.spellings.removeAll(code);
    return staged;
}

std::optional<DbFailure> KnownCodes::load()
{
    const auto rows =
        m_records.read(kept::code(), {u"select c.Code, c.StockID, c.Units, s.StockID, s.StockName from HarrowbyCode c "
                                      "left join StockList s on s.StockID = c.StockID"_s,
                                      {}});
    if (!rows)
        return rows.error();
    for (const RecordRow &row : *rows) {
        KnownCode known{row.at(0), row.at(1), row.at(2), {}, false};
        const QString id = recordText(known.stockId);
        known.isOrphan = id.isEmpty() || recordText(row.at(3)) != id;
        if (!known.isOrphan)
            known.itemName = recordText(row.at(4));
        QList<KnownCode> &same = m_rows[recordText(known.code)];
        // Two items of one ID are one owner.
        const auto isIt = [&](const KnownCode &other) {
            return other.code == known.code && other.stockId == known.stockId && other.units == known.units;
        };
        if (std::none_of(same.begin(), same.end(), isIt))
            same << known;
    }
    return {};
}

std::optional<DbFailure> KnownCodes::lookUp(const QStringList &codes)
{
    m_items.clear();
    QStringList ids;
    for (const QString &code : codes)
        ids << spellingsOf(code) << gtinSpellings(withLostZeros(code));
    if (ids.isEmpty())
        return {};
    const auto found = CodeTable(m_records).itemsWithIds(ids);
    if (!found)
        return found.error();
    for (const StockItem &item : *found)
        m_items.insert(item.id, item);
    return {};
}

QList<ItemCode> KnownCodes::entriesOf(const QString &code) const
{
    QList<ItemCode> entries;
    for (const QString &spelling : spellingsOf(code)) {
        for (const KnownCode &known : m_rows.value(spelling))
            entries << itemCode(known);
    }
    return entries;
}

QList<StockItem> KnownCodes::itemsOf(const QString &code) const
{
    QList<StockItem> items;
    for (const QString &spelling : spellingsOf(code)) {
        if (const auto found = m_items.constFind(spelling); found != m_items.constEnd())
            items << *found;
    }
    return items;
}

QString KnownCodes::meant(const QString &code) const
{
    const QString whole = withLostZeros(code);
    if (whole.isEmpty() || m_rows.contains(code) || m_items.contains(code))
        return code;
    return entriesOf(whole).isEmpty() && itemsOf(whole).isEmpty() ? code : whole;
}

KnownCodes::Owner KnownCodes::ownerOf(const QString &cell) const
{
    const QString code = meant(cell);
    const QList<ItemCode> entries = entriesOf(code);
    const QList<StockItem> items = itemsOf(code);
    if (m_items.contains(code))
        return {code, {}};
    QSet<QString> owners;
    for (const StockItem &item : items)
        owners.insert(item.id);
    bool isOrphan = false;
    for (const ItemCode &entry : entries) {
        if (!entry.isOrphan && entry.code == code)
            return {entry.stockId, {}};
        isOrphan = isOrphan || entry.isOrphan;
        if (!entry.isOrphan)
            owners.insert(entry.stockId);
    }
    if (owners.size() > 1)
        return {{}, u"The code is that of several items."_s};
    if (owners.isEmpty())
        return {{}, isOrphan ? u"The code belongs to an item that is gone."_s : QString()};
    return {*owners.begin(), {}};
}

bool KnownCodes::has(const QString &stockId, const QString &code) const
{
    const QList<StockItem> items = itemsOf(code);
    const QList<ItemCode> entries = entriesOf(code);
    return std::ranges::any_of(items, [&](const StockItem &item) { return item.id == stockId; }) ||
           std::ranges::any_of(entries,
                               [&](const ItemCode &entry) { return !entry.isOrphan && entry.stockId == stockId; });
}

std::optional<QString> KnownCodes::takenBy(const QString &code, const QString &stockId) const
{
    return takenWords(code, stockId, itemsOf(code), entriesOf(code));
}

} // namespace harrowby::app
