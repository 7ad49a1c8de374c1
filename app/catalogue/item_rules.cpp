// SPDX-License-Identifier: MIT
#include "app/catalogue/import_words.h"
#include "app/catalogue/item_judge.h"
#include "app/csv/figures.h"
#include "basic/numbers.h"
#include "basic/reserved_categories.h"
#include "basic/stock_id.h"
#include "basic/text.h"
#include "basic/values.h"

#include <cmath>

using namespace Qt::StringLiterals;

/// When a row differs from its item, and what a row must hold to be written.
namespace harrowby::app {

namespace {

/// What a row that changes an item does not bring counts as right: it stays as it is.
StockEntry faultlessEntry(const QString &id)
{
    return {id, u"-"_s, u"-"_s, u"0"_s, u"0"_s, u"0"_s, enabledText};
}

/// What a new item has of the columns that the file lacks.
StockEntry newEntry(const QString &id)
{
    return {id, otherCategory, {}, {}, u"0"_s, u"0"_s, enabledText};
}

int columnOf(StockFault fault)
{
    switch (fault) {
    case StockFault::Category:
        return CategoryColumn;
    case StockFault::Name:
        return NameColumn;
    case StockFault::Cost:
        return CostColumn;
    case StockFault::ReorderLevel:
        return LevelColumn;
    case StockFault::Available:
        return AvailableColumn;
    case StockFault::Use:
        return UseColumn;
    default:
        return IdColumn;
    }
}

bool isFigure(int column)
{
    return column == CostColumn || column == LevelColumn || column == AvailableColumn;
}

/// The number that a stored value is as a whole; nothing for a text that only begins with one.
std::optional<double> storedNumber(const RecordValue &value)
{
    if (std::holds_alternative<std::int64_t>(value) || std::holds_alternative<double>(value))
        return recordReal(value);
    const auto *text = std::get_if<QString>(&value);
    return text != nullptr ? wholeNumber(*text) : std::nullopt;
}

bool isSameFigure(double figure, int column, const RecordValue &stored)
{
    const std::optional<double> number = storedNumber(stored);
    // A cost of more decimals is stored with two of them.
    return number == figure || (column == CostColumn && number == wholeNumber(formatFixed(figure)));
}

/// As the stock form stores it; empty for what it refuses.
QString storedUse(const QString &use)
{
    StockEntry entry = faultlessEntry(u"-"_s);
    entry.use = use;
    return findFault(entry) == StockFault::None ? stockItem(entry).use : QString();
}

} // namespace

RecordValue stagedValue(const RecordValue &stored)
{
    if (const auto *real = std::get_if<double>(&stored); real != nullptr && std::isinf(*real))
        return *real > 0 ? u"9e999"_s : u"-9e999"_s; // digits that an infinite number is made of
    const bool isNumber = std::holds_alternative<std::int64_t>(stored) || std::holds_alternative<double>(stored);
    return isNumber ? RecordValue(recordText(stored)) : stored;
}

std::array<RecordValue, importedParts> freshParts(const harrowby::StockItem &item)
{
    return {item.name,
            item.category,
            item.cost,
            recordText(storedFigure(item.reorderLevel)),
            recordText(storedFigure(item.available)),
            item.use};
}

/// Into an item that is there already: an empty cell leaves it as it is.
bool ItemJudge::isBrought(const ImportLine &line, int column) const
{
    return !leavesStock(column, m_choices) && !cellOf(line, column).isEmpty();
}

/// Whether the file is an export, and this column of it is taken for itself.
bool ItemJudge::hasExactValue(const ImportLine &line, int column) const
{
    return !line.stored.isEmpty() && m_choices.columns.indexOf(column) == column;
}

bool ItemJudge::differs(const ImportLine &line, int column, const Item &item) const
{
    const RecordValue &stored = item.at(column);
    const auto *const same = line.stored.isEmpty() ? std::get_if<QString>(&stored) : nullptr;
    if (same != nullptr && *same == line.cells.at(column)) // the usual case, without a copy
        return false;
    if (hasExactValue(line, column) && recordText(line.stored.at(column).value) == recordText(stored))
        return false;
    const QString &cell = line.cells.at(column);
    if (isFigure(column)) {
        const std::optional<double> figure = readFigure(cellOf(line, column), m_choices.form.decimalSign);
        return figure ? !isSameFigure(*figure, column, stored) : recordText(stored) != cell;
    }
    const QString text = recordText(stored);
    if (text == cell || text == cellOf(line, column))
        return false;
    if (column == UseColumn)
        return storedUse(cellOf(line, column)) != text;
    return newText(cell) != text;
}

ItemJudge::Change ItemJudge::changeOf(const ImportLine &line, const Item *item, const QString &id) const
{
    Change change;
    change.isNew = item == nullptr;
    change.entry = change.isNew ? newEntry(id) : faultlessEntry(id);
    for (int column = NameColumn; column <= UseColumn; ++column) {
        // A column that the file has is entered in a new item as it stands there, be it empty.
        const bool isThere = change.isNew ? m_choices.columns.contains(column) : isBrought(line, column);
        if (!isThere || (item != nullptr && !differs(line, column, *item)))
            continue;
        change.mask |= maskOf(partOf(column));
        bring(line, column, change.entry);
    }
    const QString code = m_codes != nullptr ? m_codes->meant(cellOf(line, CodeColumn)) : QString();
    if (!code.isEmpty() && (change.isNew || !m_codes->has(id, code)))
        change.newCode = code;
    return change;
}

QString ItemJudge::newText(const QString &cell) const
{
    const QString text = trimUnseen(cell);
    return m_choices.putIntoCapitals ? text.toUpper() : text;
}

/// In the form that the stock form's rules read; what is no figure in the file's form is none there either.
QString ItemJudge::newFigure(const ImportLine &line, int column) const
{
    const QString cell = cellOf(line, column);
    const std::optional<double> figure = readFigure(cell, m_choices.form.decimalSign);
    return figure ? plainText(*figure) : cell.isEmpty() ? QString() : u"?"_s;
}

void ItemJudge::bring(const ImportLine &line, int column, StockEntry &entry) const
{
    switch (column) {
    case NameColumn:
        entry.name = newText(line.cells.at(column));
        break;
    case CategoryColumn: {
        const QString cell = cellOf(line, column);
        entry.category = m_categories.has(cell) ? cell : newText(cell);
        break;
    }
    case CostColumn:
        entry.cost = newFigure(line, column);
        break;
    case LevelColumn:
        entry.reorderLevel = newFigure(line, column);
        break;
    case AvailableColumn:
        entry.available = newFigure(line, column);
        break;
    default:
        entry.use = cellOf(line, column);
    }
}

std::optional<ItemJudge::Fault> ItemJudge::faultOf(const ImportLine &line, const Change &change) const
{
    for (int column = IdColumn; column <= UseColumn; ++column) {
        const bool counts = column == IdColumn ? change.isNew : (change.mask & maskOf(partOf(column))) != 0;
        if (counts && hasExactValue(line, column) && std::holds_alternative<QByteArray>(line.stored.at(column).value))
            return Fault{column, u"It holds bytes that are no text."_s};
    }
    if (auto fault = entryFault(line, change.entry))
        return fault;
    if (auto fault = idFault(change))
        return fault;
    if ((change.mask & maskOf(NamePart)) != 0) {
        if (auto fault = nameFault(change))
            return fault;
    }
    if (change.isNew || (change.mask & maskOf(CategoryPart)) != 0) {
        if (auto fault = categoryFault(change))
            return fault;
    }
    return change.isNew ? std::nullopt : codeFault(change);
}

std::optional<ItemJudge::Fault> ItemJudge::entryFault(const ImportLine &line, const StockEntry &entry) const
{
    const StockFault fault = findFault(entry);
    if (fault == StockFault::None)
        return {};
    const int column = columnOf(fault);
    const QString cell = cellOf(line, column);
    return Fault{column, cell.isEmpty() ? faultText(fault) : u"%1 (%2)"_s.arg(faultText(fault), cell)};
}

std::optional<ItemJudge::Fault> ItemJudge::idFault(const Change &change) const
{
    const QString &id = change.entry.id;
    if (!change.isNew || id == automaticIdText)
        return {};
    auto problem = idProblem(id, change.entry.name);
    if (!problem)
        problem = m_newIds.problemOf(id);
    return problem ? std::optional(Fault{IdColumn, *problem}) : std::nullopt;
}

std::optional<ItemJudge::Fault> ItemJudge::nameFault(const Change &change) const
{
    if (const auto problem = nameProblem(change.entry.name))
        return Fault{NameColumn, *problem};
    const QString capitals = change.entry.name.toUpper();
    if (const Repeats repeats = m_census.names(capitals); repeats.rows > 1)
        return Fault{NameColumn, repeatsWords(u"The name"_s, repeats)};
    for (const Item &item : m_byName.value(capitals)) {
        if (change.isNew || recordText(item.at(0)) != change.entry.id)
            return Fault{NameColumn,
                         u"The name is that of %1."_s.arg(itemWords(recordText(item.at(1)), recordText(item.at(0))))};
    }
    return {};
}

std::optional<ItemJudge::Fault> ItemJudge::categoryFault(const Change &change) const
{
    const QString &category = change.entry.category;
    if (m_categories.has(category))
        return {};
    if (const auto problem = categoryProblem(category))
        return Fault{CategoryColumn, *problem};
    if (!m_choices.makeCategories)
        return Fault{CategoryColumn, u"There is no category %1, and none is to be made."_s.arg(category)};
    return {};
}

std::optional<ItemJudge::Fault> ItemJudge::codeFault(const Change &change) const
{
    if (change.newCode.isEmpty())
        return {};
    if (const auto problem = codeProblem(change.newCode))
        return Fault{CodeColumn, *problem};
    if (const auto taken = m_codes->takenBy(change.newCode, change.entry.id))
        return Fault{CodeColumn, *taken};
    if (const Repeats repeats = m_census.codes(change.newCode); repeats.rows > 1)
        return Fault{CodeColumn, repeatsWords(u"The code"_s, repeats)};
    for (const QString &spelling : spellingsOf(change.newCode)) {
        if (spelling == change.entry.id)
            return Fault{CodeColumn, ownIdWords(spelling)};
        if (m_census.keys(spelling).rows > 0)
            return Fault{CodeColumn, u"The code is the ID in line %1."_s.arg(m_census.keys(spelling).firstLine)};
    }
    return {};
}

} // namespace harrowby::app
