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

Result<QString, HeldCarts::NotHeld> HeldCarts::hold(const CartToHold &cart)
{
    const QString id = QUuid::createUuid().toString(QUuid::WithoutBraces);
    bool isWordTaken = false;
    const auto held = m_records.together(kept::held(), [&] {
        const auto carts = list();
        isWordTaken = carts && isTaken(*carts, cart.word);
        return carts && !isWordTaken && add(id, cart);
    });
    if (held && *held)
        return id;
    return Unexpected(isWordTaken ? NotHeld::WordTaken : NotHeld::Failed);
}

bool HeldCarts::add(const QString &id, const CartToHold &cart)
{
    std::int64_t position = 0;
    QList<QList<RecordValue>> lines;
    for (const CounterLine &line : cart.lines) {
        const std::int64_t byHand = line.costByHand ? 1 : 0;
        lines.append({id, ++position, line.stockId, line.name, line.quantity, line.cost, byHand});
    }
    if (!m_records.writeEach(kept::held(),
                             u"insert into HarrowbyHeldLine (HeldID, Position, StockID, StockName, Quantity, Cost, "
                             "CostByHand) values (?, ?, ?, ?, ?, ?, ?)"_s,
                             lines))
        return false;
    return m_records
        .write(
            kept::held(),
            {u"insert into HarrowbyHeld (HeldID, Word, HeldAt, HeldBy, HeldLines, Total) values (?, ?, ?, ?, ?, ?)"_s,
             {id, cart.word, recordTime(QDateTime::currentDateTimeUtc()), cart.user, position, cart.total}})
        .has_value();
}

HeldCarts::Taken HeldCarts::take(const QString &id, const std::function<bool(const std::vector<CounterLine> &)> &put)
{
    auto uncommitted = Taken::Failed; // what it is unless the writes are committed
    const auto committed = m_records.together(kept::held(), [&] {
        const auto removed = m_records.write(kept::held(), {u"delete from HarrowbyHeld where HeldID = ?"_s, {id}});
        if (removed && *removed == 0)
            uncommitted = Taken::Gone;
        if (!removed || *removed == 0)
            return false;
        const auto lines = linesOf(id);
        if (!lines || !m_records.write(kept::held(), {u"delete from HarrowbyHeldLine where HeldID = ?"_s, {id}}))
            return false;
        const bool isPut = put(*lines);
        uncommitted = isPut ? Taken::StillListed : Taken::NotPut;
        return isPut;
    });
    return committed && *committed ? Taken::Done : uncommitted;
}

HeldCarts::Taken HeldCarts::drop(const QString &id)
{
    const auto removed =
        m_records.writeTogether(kept::held(), {{u"delete from HarrowbyHeld where HeldID = ?"_s, {id}},
                                               {u"delete from HarrowbyHeldLine where HeldID = ?"_s, {id}}});
    if (!removed)
        return Taken::Failed;
    return removed->constFirst() == 0 ? Taken::Gone : Taken::Done;
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
