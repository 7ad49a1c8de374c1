// SPDX-License-Identifier: MIT
#include "tests/ui/held_book.h"

#include "tests/ui/counter_guest.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::test {

namespace {

using app::recordNumber;
using app::recordReal;
using app::recordText;

constexpr double mostUnits = 30'000;

double unitsOf(const std::vector<CounterLine> &cart, const CounterLine &line)
{
    double units = 0;
    for (const CounterLine &one : cart) {
        if (one.stockId == line.stockId && one.name == line.name)
            units += one.quantity;
    }
    return units;
}

bool isPlain(const QString &id)
{
    return std::all_of(id.begin(), id.end(), [](QChar c) { return c.isDigit() || (c >= u'A' && c <= u'Z'); });
}

} // namespace

WatchedRecords::WatchedRecords(sqlite3 *database, HeldBook &book, Place place) :
    SqliteRecords(database), m_book(book), m_place(place)
{
}

std::optional<QString> WatchedRecords::takePutAside()
{
    return std::exchange(m_putAside, {});
}

app::Records::Answer<std::int64_t> WatchedRecords::change(const app::RecordStatement &statement)
{
    auto changed = SqliteRecords::change(statement);
    if (changed && *changed > 0)
        note(statement);
    return changed;
}

app::Records::Answer<std::int64_t> WatchedRecords::changeEach(const QString &text,
                                                              const QList<QList<app::RecordValue>> &rows)
{
    auto changed = SqliteRecords::changeEach(text, rows);
    for (const QList<app::RecordValue> &values : changed ? rows : QList<QList<app::RecordValue>>())
        note({text, values});
    return changed;
}

void WatchedRecords::note(const app::RecordStatement &statement)
{
    const QString id = statement.values.isEmpty() ? QString() : recordText(statement.values.at(0));
    if (statement.text.startsWith(u"insert into HarrowbyHeldLine ("_s)) {
        const auto &values = statement.values;
        m_lines[id].push_back({recordText(values.at(2)), recordText(values.at(3)), recordReal(values.at(4)),
                               recordReal(values.at(5)), recordNumber(values.at(6)) != 0});
    } else if (statement.text.startsWith(u"insert into HarrowbyHeld ("_s)) {
        m_added << id;
    } else if (statement.text == u"delete from HarrowbyHeld where HeldID = ?"_s) {
        m_removed << id;
    }
}

std::optional<DbFailure> WatchedRecords::begin(const app::RecordTable &table, const QString &name)
{
    rollBack();
    if (m_place == Place::AtTheCounter)
        m_cartBefore = harrowby::Counter::instance().cart();
    return SqliteRecords::begin(table, name);
}

void WatchedRecords::rollBack()
{
    m_lines.clear();
    m_added.clear();
    m_removed.clear();
    SqliteRecords::rollBack();
}

/// No event comes between the commit and what is compared with it.
std::optional<DbFailure> WatchedRecords::commit()
{
    const bool isHere = m_place == Place::AtTheCounter;
    for (const QString &id : std::as_const(m_removed)) {
        if (isHere)
            judgeGone(id);
    }
    if (auto failure = SqliteRecords::commit())
        return failure;
    for (const QString &id : std::exchange(m_added, {})) {
        if (isHere)
            judgeHeld(id, m_lines.value(id));
        m_book.carts.insert(id, m_lines.value(id));
    }
    for (const QString &id : std::exchange(m_removed, {})) {
        if (m_book.carts.remove(id) == 0)
            problem(u"taken off the list twice: "_s + id);
    }
    return {};
}

void WatchedRecords::judgeHeld(const QString &id, const std::vector<CounterLine> &lines)
{
    ++m_book.held;
    const QStringList here = lineTexts(harrowby::Counter::instance().cart());
    if (lines.empty() || lineTexts(lines) != here)
        problem(u"held as %1, at the counter it was %2"_s.arg(lineTexts(lines).join(u", "), here.join(u", ")));
    m_putAside = id;
}

/// Back in the cart, or, where the counter's could not be emptied, still there.
void WatchedRecords::judgeGone(const QString &id)
{
    const std::vector<CounterLine> lines = m_book.carts.value(id);
    if (m_putAside == id) {
        m_putAside.reset();
        if (lineTexts(harrowby::Counter::instance().cart()) != lineTexts(lines))
            problem(u"neither held nor at the counter: "_s + lineTexts(lines).join(u", "));
        return;
    }
    ++m_book.recalled;
    for (CounterLine line : lines) {
        line.quantity = unitsOf(lines, line); // an item may stand in two lines of another till's
        judgeRecalled(line);
    }
}

void WatchedRecords::judgeRecalled(const CounterLine &line)
{
    const double before = unitsOf(m_cartBefore, line);
    const double back = unitsOf(harrowby::Counter::instance().cart(), line) - before;
    if (back > line.quantity || (back < line.quantity && isWhollySold(line, before)))
        problem(u"%1 came back of %2"_s.arg(back).arg(lineText(line)));
}

/// Whether all of the line must come back, by what stands in the stock. Odd rows and odd IDs are left to other tests.
bool WatchedRecords::isWhollySold(const CounterLine &line, double besides)
{
    if (!isPlain(line.stockId) || line.quantity + besides > mostUnits)
        return false;
    const auto rows = select({u"select StockName, StockUse, StockAvailable, StockCost from StockList where StockID = ? "
                              "and typeof(StockAvailable) in ('integer', 'real') and typeof(StockCost) in ('integer', "
                              "'real')"_s,
                              {line.stockId}});
    if (!rows || rows->size() != 1)
        return false;
    const app::RecordRow &row = rows->constFirst();
    return recordText(row.at(0)) == line.name && recordText(row.at(1)) == u"Enabled"_s &&
           recordReal(row.at(2)) >= line.quantity + besides && recordReal(row.at(2)) <= mostUnits &&
           recordReal(row.at(3)) <= mostUnits;
}

} // namespace harrowby::test
