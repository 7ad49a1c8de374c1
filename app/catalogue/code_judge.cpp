// SPDX-License-Identifier: MIT
#include "app/catalogue/code_judge.h"

#include "app/catalogue/import_words.h"
#include "app/csv/figures.h"

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace harrowby::app {

Records::Answer<bool> CodeJudge::take(const ImportFile &file, const WorkWatch &watch)
{
    if (const auto failure = m_known.load())
        return Unexpected(*failure);
    ImportLines lines(file, m_choices);
    ImportLine line;
    for (qint64 count = 0; lines.next(line); ++count) {
        const QString code = cellOf(line, Code);
        if (!line.hasFault() && !code.isEmpty())
            m_repeats[longestSpelling(code)].count(line.line);
        if (count % 1000 == 0 && !watch({u"The file is being read …"_s, lines.percent()}))
            return false;
    }
    return true;
}

Records::Answer<StagedPiece> CodeJudge::judge(const QList<ImportLine> &lines)
{
    QStringList codes;
    QStringList ids;
    for (const ImportLine &line : lines) {
        if (!line.hasFault()) {
            codes << cellOf(line, Code);
            ids << cellOf(line, Item);
        }
    }
    m_items.clear();
    const auto items = CodeTable(m_records).itemsWithIds(ids);
    if (!items)
        return Unexpected(items.error());
    for (const StockItem &item : *items)
        m_items.insert(item.id);
    if (const auto failure = m_known.lookUp(codes))
        return Unexpected(*failure);
    StagedPiece piece;
    for (const ImportLine &line : lines) {
        if (line.hasFault())
            piece.rows << refused(line, -1, line.fault);
        else if (m_choices.asStored)
            asStored(line, piece);
        else
            judgeLine(line, piece);
    }
    return piece;
}

StagedRow CodeJudge::rowOf(const ImportLine &line, RowKind what) const
{
    StagedRow row;
    row.line = line.line;
    row.what = what;
    row.stockId = cellOf(line, Code);
    return row;
}

StagedRow CodeJudge::refused(const ImportLine &line, int column, const QString &reason) const
{
    StagedRow row = rowOf(line, RowKind::Refused);
    row.column = column < 0 ? line.column : m_lines.heading(column);
    row.reason = reason;
    return row;
}

void CodeJudge::asStored(const ImportLine &line, StagedPiece &piece) const
{
    piece.rows << rowOf(line, RowKind::New);
    piece.rows.last().stockId = recordText(line.stored.at(Code).value);
    StagedCode code;
    code.line = line.line;
    code.code = line.stored.at(Code);
    code.stockId = line.stored.at(Item);
    code.units = line.stored.at(Units).value;
    code.unitsAreText = line.stored.at(Units).isText;
    piece.codes << code;
}

/// What the cells bring that is not stored so, as a mask.
int CodeJudge::differences(const ImportLine &line, const KnownCode &known) const
{
    int mask = 0;
    const QString id = cellOf(line, Item);
    if (!id.isEmpty() && line.cells.at(Item) != recordText(known.stockId) && id != recordText(known.stockId))
        mask |= codeItemMask;
    const QString units = cellOf(line, Units);
    const auto figure = readFigure(units, m_choices.form.decimalSign);
    const bool isSame = figure ? *figure == recordReal(known.units) : units == recordText(known.units);
    if (!units.isEmpty() && !isSame)
        mask |= codeUnitsMask;
    return mask;
}

bool CodeJudge::takeEqual(const ImportLine &line, const QString &code)
{
    auto found = m_unpaired.find(code);
    if (found == m_unpaired.end())
        found = m_unpaired.insert(code, m_known.rowsOf(code));
    const auto equal =
        std::ranges::find_if(*found, [&](const KnownCode &known) { return differences(line, known) == 0; });
    if (equal == found->end())
        return false;
    found->erase(equal);
    return true;
}

/// The code, or another length of its number in which the item has it.
QString CodeJudge::storedSpelling(const ImportLine &line) const
{
    const QString code = m_known.meant(cellOf(line, Code));
    const QString id = cellOf(line, Item);
    const auto isIt = [&](const KnownCode &known) {
        return !known.isOrphan && (id.isEmpty() || id == recordText(known.stockId));
    };
    if (!m_known.rowsOf(code).isEmpty())
        return code;
    const QStringList spellings = spellingsOf(code);
    const auto found = std::ranges::find_if(
        spellings, [&](const QString &spelling) { return std::ranges::any_of(m_known.rowsOf(spelling), isIt); });
    return found == spellings.end() ? code : *found;
}

void CodeJudge::judgeLine(const ImportLine &line, StagedPiece &piece)
{
    const QString code = storedSpelling(line);
    const QList<KnownCode> known = m_known.rowsOf(code);
    const Repeats repeats = m_repeats.value(longestSpelling(code));
    if (takeEqual(line, code)) {
        piece.rows << rowOf(line, RowKind::Unchanged);
        piece.rows.last().isRepeated = repeats.rows > 1;
    } else if (repeats.rows > 1) {
        piece.rows << refused(line, Code, repeatsWords(code, repeats));
    } else if (known.isEmpty()) {
        judgeNew(line, code, piece);
    } else {
        judgeChange(line, known.constFirst(), piece);
    }
}

/// A whole number that one scan can sell; 1 where none is said.
Result<std::int64_t, QString> CodeJudge::unitsOf(const ImportLine &line) const
{
    const QString cell = cellOf(line, Units);
    if (cell.isEmpty())
        return 1;
    const auto figure = readFigure(cell, m_choices.form.decimalSign);
    const bool isWhole = figure && std::trunc(*figure) == *figure && std::abs(*figure) <= mostUnits;
    const auto units = readUnits(isWhole ? QString::number(static_cast<int>(*figure)) : cell);
    if (!units)
        return Unexpected(units.error());
    return *units;
}

void CodeJudge::judgeNew(const ImportLine &line, const QString &code, StagedPiece &piece) const
{
    if (const auto problem = codeProblem(code))
        return piece.rows.append(refused(line, Code, *problem));
    const QString id = cellOf(line, Item);
    if (!m_items.contains(id))
        return piece.rows.append(
            refused(line, Item, id.isEmpty() ? u"The ID of the item is missing."_s : noItemWords(id)));
    if (const auto taken = m_known.takenBy(code, id))
        return piece.rows.append(refused(line, Code, *taken));
    const auto units = unitsOf(line);
    if (!units)
        return piece.rows.append(refused(line, Units, units.error()));
    piece.codes << newCode(line.line, code, id, *units);
    piece.rows << rowOf(line, RowKind::New);
}

void CodeJudge::judgeChange(const ImportLine &line, const KnownCode &known, StagedPiece &piece) const
{
    const int mask = differences(line, known);
    const QString id = cellOf(line, Item);
    if ((mask & codeItemMask) != 0 && !known.isOrphan)
        return piece.rows.append(refused(line, Item, belongsToWords(known.itemName, recordText(known.stockId))));
    if ((mask & codeItemMask) != 0 && !m_items.contains(id))
        return piece.rows.append(refused(line, Item, noItemWords(id)));
    const auto units = unitsOf(line);
    if ((mask & codeUnitsMask) != 0 && !units)
        return piece.rows.append(refused(line, Units, units.error()));
    StagedCode staged;
    staged.line = line.line;
    staged.what = RowKind::Changed;
    staged.code.value = known.code;
    staged.oldStockId = known.stockId;
    staged.oldUnits = known.units;
    staged.stockId.value = (mask & codeItemMask) != 0 ? RecordValue(id) : known.stockId;
    staged.units = (mask & codeUnitsMask) != 0 ? RecordValue(*units) : known.units;
    piece.codes << staged;
    piece.rows << rowOf(line, RowKind::Changed);
    piece.rows.last().mask = mask;
}

} // namespace harrowby::app
