// SPDX-License-Identifier: MIT
#include "app/till/missed_stock.h"

#include "app/search/finding_connection.h"
#include "app/shop/failure_notice.h"
#include "basic/numbers.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

QString shownAs(const QString &name, const QString &stockId)
{
    return name.isEmpty() ? stockId : u"%1 (%2)"_s.arg(name, stockId);
}

QString unitsWords(const StockMiss &miss, const QString &name)
{
    return u"%1 x %2"_s.arg(plainText(miss.units), shownAs(name, miss.stockId));
}

} // namespace

MissedStock::MissedStock(Counter &counter, Records &records, const QString &till, Voice voice) :
    m_counter(counter), m_records(records), m_deeds(records, tillPlace(till)), m_voice(std::move(voice))
{
    connect(&counter, &Counter::purchased, this, &MissedStock::followPurchase);
    connect(&counter, &Counter::purchaseUndone, this, &MissedStock::followTakenBack);
    connect(&counter, &Counter::purchaseDeleted, this, &MissedStock::followTakenBack);
}

void MissedStock::note(const StockMiss &miss)
{
    switch (miss.kind) {
    case StockMiss::Kind::NotLowered:
        m_sold << miss;
        break;
    case StockMiss::Kind::NotRaised:
        m_takenBack << miss;
        break;
    case StockMiss::Kind::NotForSale:
        QMetaObject::invokeMethod(
            this, [this, miss] { sayNotForSale(miss); }, Qt::QueuedConnection);
    }
}

/// Where the purchase is not stored, nothing was sold, and no stock is missing.
void MissedStock::followPurchase(const CounterPurchase &purchase)
{
    m_takenBack.clear();
    m_voice.remark({});
    const auto missed = std::exchange(m_sold, {});
    if (purchase.row == CounterPurchase::Row::NotWritten)
        return;
    for (const StockMiss &miss : missed) {
        const Standing item = standingOf(miss.stockId);
        if (item.items == 1 && lower(miss, item.name, purchase))
            continue;
        tell(u"%1 sold, but no stock was lowered (purchase %2)."_s.arg(unitsWords(miss, miss.name), purchase.id),
             reasonOf(item, miss.stockId), purchase.user);
    }
}

QString MissedStock::reasonOf(const Standing &item, const QString &stockId)
{
    if (!item.isRead)
        return u"The item could not be read."_s;
    if (item.items == 0)
        return u"No item has the ID %1 any more."_s.arg(stockId);
    if (item.items == 1)
        return u"The item is called %1 now; its stock could not be lowered."_s.arg(item.name);
    return u"No item has this name any more, and which of those with the ID %1 it was is not known."_s.arg(stockId);
}

/// By the ID alone, as the till's own statement that adds back; only while one item has it. Whether it was done.
bool MissedStock::lower(const StockMiss &miss, const QString &name, const CounterPurchase &purchase)
{
    const RecordStatement lowering = {u"update StockList set StockAvailable = StockAvailable - ? where StockID = ? "
                                      "and (select count(*) from StockList where StockID = ?) = 1"_s,
                                      {miss.units, miss.stockId, miss.stockId}};
    const auto told = m_deeds.statement(
        {deed::stockOfRenamed, purchase.user,
         u"%1 sold under this name (purchase %2); the item is called %3 now, and its stock was lowered."_s.arg(
             unitsWords(miss, miss.name), purchase.id, name)});
    const auto done = writeTold(m_records, kept::activity(), lowering, told);
    if (!done || !*done)
        return false;
    m_voice.remark(u"%1 is called %2 now; its stock was lowered."_s.arg(shownAs(miss.name, miss.stockId), name));
    return true;
}

void MissedStock::followTakenBack(const QString &id)
{
    m_sold.clear();
    const auto missed = std::exchange(m_takenBack, {});
    const auto user = m_counter.user();
    for (const StockMiss &miss : missed)
        tell(u"%1 taken back, but no stock was raised (purchase %2)."_s.arg(unitsWords(miss, nameInCart(miss.stockId)),
                                                                            id),
             u"No item has the ID %1 any more."_s.arg(miss.stockId), user ? user->name : QString());
}

void MissedStock::tell(const QString &work, const QString &reason, const QString &user)
{
    (void)m_deeds.add({deed::stockNotChanged, user, work + u' ' + reason}); // what fails is told by the records
    Q_EMIT notChanged(work, reason, u"Have the item counted. The office lists this under \"Activity\"."_s);
}

/// Nothing when the item can be sold again meanwhile.
void MissedStock::sayNotForSale(const StockMiss &miss)
{
    const Standing item = standingOf(miss.stockId);
    const QString shown = shownAs(miss.name, miss.stockId);
    const QString loadAgain = u" Choose its category again."_s;
    if (!item.isRead || (item.items == 1 && item.isSold && item.name == miss.name))
        return;
    if (item.items == 0)
        m_voice.refuse(u"%1 is not in stock any more."_s.arg(shown) + loadAgain);
    else if (item.items > 1)
        m_voice.refuse(u"%1 was not added: its ID stands in the stock more than once."_s.arg(shown));
    else if (!item.isSold)
        m_voice.refuse(u"%1 is switched off in the stock."_s.arg(shown) + loadAgain);
    else if (item.name.toUpper() == miss.name)
        m_voice.refuse(u"%1 has small letters in its name. Save it once under \"Add/Edit Stock\"."_s.arg(shown));
    else
        m_voice.refuse(u"%1 is called %2 now."_s.arg(shown, item.name) + loadAgain);
}

MissedStock::Standing MissedStock::standingOf(const QString &stockId) const
{
    const auto rows = m_records.read({u"select StockName, StockUse from StockList where StockID = ?"_s, {stockId}});
    if (!rows)
        return {};
    Standing standing{static_cast<int>(rows->size()), {}, false, true};
    if (rows->size() == 1) {
        standing.name = recordText(rows->constFirst().at(0));
        standing.isSold = recordText(rows->constFirst().at(1)) == "Enabled"_L1;
    }
    return standing;
}

/// A purchase that is taken back goes into the cart.
QString MissedStock::nameInCart(const QString &stockId) const
{
    for (const CounterLine &line : m_counter.cart()) {
        if (line.stockId == stockId)
            return line.name;
    }
    return {};
}

void tellMissedStock(const MissedStock &missed, FailureNotice &notice)
{
    QObject::connect(&missed, &MissedStock::notChanged, &notice,
                     [&notice](const QString &work, const QString &reason, const QString &advice) {
                         const auto subject = u"missed stock"_s;
                         notice.tellOver(subject); // each is told, also when one like it was dismissed
                         notice.tell({subject, work, reason, advice});
                     });
}

void followMissedStock(FindingConnection &connection, MissedStock &missed, FailureNotice &notice)
{
    connection.setMissHandler([&missed](const StockMiss &miss) { missed.note(miss); });
    tellMissedStock(missed, notice);
}

} // namespace harrowby::app
