// SPDX-License-Identifier: MIT
#include "app/hold/held_carts.h"

#include "app/records/record_tables.h"
#include "basic/text.h"

#include <QUuid>

#include <algorithm>
#include <cstdint>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

HeldCart cartOf(const RecordRow &row)
{
    return {recordText(row.at(0)),
            recordText(row.at(1)),
            timeOfRecord(recordText(row.at(2))).toLocalTime(),
            recordText(row.at(3)),
            static_cast<int>(recordNumber(row.at(4))),
            recordReal(row.at(5))};
}

/// What one is told by of which nobody knows what became (failure_text.cpp: `heldChange`).
QString holding(const QString &word)
{
    return u"INSERT HarrowbyHeld "_s + word;
}

QString dropping(const QString &word)
{
    return u"DELETE HarrowbyHeld "_s + word;
}

HeldCarts::Taken endOf(const Records::Answer<bool> &committed, HeldCarts::Taken uncommitted)
{
    if (committed && *committed)
        return HeldCarts::Taken::Done;
    return !committed && Records::isUnknown(committed.error()) ? HeldCarts::Taken::NotKnown : uncommitted;
}

CounterLine lineOf(const RecordRow &row)
{
    return {recordText(row.at(0)), recordText(row.at(1)), recordReal(row.at(2)), recordReal(row.at(3)),
            recordNumber(row.at(4)) != 0};
}

} // namespace

Records::Answer<QList<HeldCart>> HeldCarts::list() const
{
    const auto rows = m_records.read(kept::held(), {u"select HeldID, Word, HeldAt, HeldBy, HeldLines, Total "
                                                    "from HarrowbyHeld order by HeldAt, HeldID"_s,
                                                    {}});
    if (!rows)
        return Unexpected(rows.error());
    QList<HeldCart> carts;
    for (const RecordRow &row : *rows)
        carts << cartOf(row);
    return carts;
}

Result<HeldCart, HeldCarts::NotHeld> HeldCarts::hold(const CartToHold &cart)
{
    const HeldCart toHold = {QUuid::createUuid().toString(QUuid::WithoutBraces),
                             cart.word,
                             QDateTime::currentDateTime(),
                             cart.user,
                             static_cast<int>(cart.lines.size()),
                             cart.total};
    bool isWordTaken = false;
    const auto held = m_records.together(
        kept::held(),
        [&] {
            const auto carts = list();
            isWordTaken = carts && isTaken(*carts, cart.word);
            return carts && !isWordTaken && add(toHold, cart.lines);
        },
        holding(cart.word));
    if (held && *held)
        return toHold;
    if (!held && Records::isUnknown(held.error()))
        return Unexpected(NotHeld::NotKnown);
    return Unexpected(isWordTaken ? NotHeld::WordTaken : NotHeld::Failed);
}

bool HeldCarts::add(const HeldCart &held, const std::vector<CounterLine> &lines)
{
    std::int64_t position = 0;
    QList<QList<RecordValue>> rows;
    for (const CounterLine &line : lines) {
        const std::int64_t byHand = line.costByHand ? 1 : 0;
        rows.append({held.id, ++position, line.stockId, line.name, line.quantity, line.cost, byHand});
    }
    if (!m_records.writeEach(kept::held(),
                             u"insert into HarrowbyHeldLine (HeldID, Position, StockID, StockName, Quantity, Cost, "
                             "CostByHand) values (?, ?, ?, ?, ?, ?, ?)"_s,
                             rows))
        return false;
    return m_records
        .write(
            kept::held(),
            {u"insert into HarrowbyHeld (HeldID, Word, HeldAt, HeldBy, HeldLines, Total) values (?, ?, ?, ?, ?, ?)"_s,
             {held.id, held.word, recordTime(held.since), held.user, position, held.total}})
        .has_value();
}

HeldCarts::Taken HeldCarts::take(const HeldCart &cart, const std::function<bool(const std::vector<CounterLine> &)> &put)
{
    auto uncommitted = Taken::Failed; // what it is unless the writes are committed
    const auto work = [&] {
        const auto removed = removeHead(cart.id);
        if (removed && *removed == 0)
            uncommitted = Taken::Gone;
        if (!removed || *removed == 0)
            return false;
        const auto lines = linesOf(cart.id);
        if (!lines || !removeLines(cart.id))
            return false;
        const bool isPut = put(*lines);
        uncommitted = isPut ? Taken::StillListed : Taken::NotPut;
        return isPut;
    };
    const auto committed = m_records.together(kept::held(), work, dropping(cart.word));
    return endOf(committed, uncommitted);
}

HeldCarts::Taken HeldCarts::drop(const HeldCart &cart)
{
    bool wasThere = false;
    const auto work = [&] {
        const auto removed = removeHead(cart.id);
        wasThere = removed && *removed > 0;
        return removed && removeLines(cart.id);
    };
    const Taken taken = endOf(m_records.together(kept::held(), work, dropping(cart.word)), Taken::Failed);
    return taken == Taken::Done && !wasThere ? Taken::Gone : taken;
}

Records::Answer<std::int64_t> HeldCarts::removeHead(const QString &id)
{
    return m_records.write(kept::held(), {u"delete from HarrowbyHeld where HeldID = ?"_s, {id}});
}

bool HeldCarts::removeLines(const QString &id)
{
    return m_records.write(kept::held(), {u"delete from HarrowbyHeldLine where HeldID = ?"_s, {id}}).has_value();
}

Records::Answer<std::vector<CounterLine>> HeldCarts::linesOf(const QString &id) const
{
    const auto rows = m_records.read(kept::held(), {u"select StockID, StockName, Quantity, Cost, CostByHand "
                                                    "from HarrowbyHeldLine where HeldID = ? order by Position"_s,
                                                    {id}});
    if (!rows)
        return Unexpected(rows.error());
    std::vector<CounterLine> lines;
    for (const RecordRow &row : *rows)
        lines.push_back(lineOf(row));
    return lines;
}

QString heldWord(const QString &typed)
{
    return tidyLabel(typed);
}

bool isTaken(const QList<HeldCart> &carts, const QString &word)
{
    return std::any_of(carts.cbegin(), carts.cend(),
                       [&](const HeldCart &cart) { return cart.word.compare(word, Qt::CaseInsensitive) == 0; });
}

QString proposedWord(const QList<HeldCart> &carts)
{
    int number = 1;
    while (isTaken(carts, QString::number(number)))
        ++number;
    return QString::number(number);
}

} // namespace harrowby::app
