// SPDX-License-Identifier: MIT
#include "app/catalogue/storable_rows.h"

#include <QHash>

#include <algorithm>
#include <limits>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

const auto stockTable = u"StockList"_s;
const auto categoryTable = u"InventoryCategory"_s;

/// For the list of what was refused, which is stored too.
QString listed(const RecordValue &value)
{
    constexpr qsizetype most = 300;
    QString text = recordText(value).replace(QChar::Null, QChar::ReplacementCharacter);
    return text.size() > most ? text.left(most) + u'\u2026' : text;
}

void refuse(StagedRow &row, const QString &reason)
{
    row.what = RowKind::Refused;
    row.column.clear();
    row.reason = u"The server cannot store it: %1."_s.arg(reason);
}

void keepWhatIsListed(StagedRow &row)
{
    const RecordValue name = row.fresh[NamePart];
    row.fresh = {};
    row.old = {};
    row.bytesOfTexts.clear();
    row.fresh[NamePart] = listed(name);
    row.stockId = listed(row.stockId);
    row.column = listed(row.column);
    row.reason.replace(QChar::Null, QChar::ReplacementCharacter);
}

/// As a store file does.
bool holdsAnything(const Records &records)
{
    return !records.unstorable(stockTable, {{u"StockCost"_s, u"no figure"_s}});
}

bool isWholeUnits(const RecordValue &units)
{
    const auto *whole = std::get_if<std::int64_t>(&units);
    return whole != nullptr && *whole >= std::numeric_limits<std::int32_t>::min() &&
           *whole <= std::numeric_limits<std::int32_t>::max();
}

} // namespace

void StorableRows::settle(StagedPiece &piece) const
{
    if (holdsAnything(m_records))
        return;
    QHash<qint64, QString> refused; // by line
    const auto note = [&refused](qint64 line, const std::optional<QString> &reason) {
        if (reason && !refused.contains(line))
            refused.insert(line, *reason);
    };
    for (StagedRow &row : piece.rows)
        note(row.line, m_kind == ImportKind::Items ? settleItem(row) : std::nullopt);
    for (StagedCode &code : piece.codes)
        note(code.line, settleCode(code));
    for (StagedCategory &category : piece.categories)
        note(category.line, settleCategory(category));
    for (StagedRow &row : piece.rows) {
        if (const auto reason = refused.constFind(row.line); reason != refused.constEnd())
            refuse(row, *reason);
        if (row.what == RowKind::Refused)
            keepWhatIsListed(row);
    }
    piece.codes.removeIf([&](const StagedCode &code) { return refused.contains(code.line); });
    piece.categories.removeIf([&](const StagedCategory &category) { return refused.contains(category.line); });
}

std::optional<QString> StorableRows::settleItem(StagedRow &row) const
{
    if (row.what != RowKind::New && row.what != RowKind::Changed)
        return {};
    DbAssignments values = {{u"StockID"_s, row.stockId}};
    for (int part = 0; part < itemParts; ++part)
        values.emplace_back(partColumn(part), row.fresh.at(static_cast<std::size_t>(part)));
    if (auto reason = m_records.unstorable(stockTable, values))
        return reason;
    row.stockId = m_records.converted(stockTable, u"StockID"_s, row.stockId);
    for (int part = 0; part < itemParts; ++part) {
        RecordValue &value = row.fresh.at(static_cast<std::size_t>(part));
        value = m_records.converted(stockTable, partColumn(part), value);
    }
    return {};
}

std::optional<QString> StorableRows::settleCode(StagedCode &code) const
{
    for (StoredValue *text : {&code.code, &code.stockId}) {
        if (std::holds_alternative<QByteArray>(text->value))
            return u"a code or an ID on a server is a text"_s;
        if (!std::holds_alternative<std::monostate>(text->value))
            text->value = recordText(text->value);
    }
    if (!isWholeUnits(code.units) || code.unitsAreText)
        return u"units on a server are a whole number"_s;
    return m_records.unstorable(kept::code().name, {{u"Code"_s, code.code.value}, {u"StockID"_s, code.stockId.value}});
}

std::optional<QString> StorableRows::settleCategory(StagedCategory &category) const
{
    if (auto reason = m_records.unstorable(
            categoryTable, {{u"CategoryName"_s, category.name.value}, {u"EntryDate"_s, category.entryDate.value}}))
        return reason;
    category.name.value = m_records.converted(categoryTable, u"CategoryName"_s, category.name.value);
    category.entryDate.value = m_records.converted(categoryTable, u"EntryDate"_s, category.entryDate.value);
    return {};
}

bool StorableRows::holdsCategory(const QString &name) const
{
    return !m_records.unstorable(categoryTable, {{u"CategoryName"_s, name}});
}

} // namespace harrowby::app
