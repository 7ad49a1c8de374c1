// SPDX-License-Identifier: MIT
#include "app/demo/demo_purchases.h"

#include "app/demo/demo_catalogue.h"
#include "basic/dates.h"
#include "basic/item_key.h"
#include "basic/numbers.h"
#include "basic/purchase_id.h"
#include "basic/purchase_text.h"

#include <algorithm>
#include <random>
#include <set>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr int pastDays = 28;
constexpr int salesToday = 6;
constexpr int openingSecond = 8 * 3600;
constexpr int openSeconds = 12 * 3600;

/// Random numbers that are the same with every standard library.
class Dice
{
public:
    explicit Dice(quint32 seed) : m_engine(seed) {}
    /// 0 to limit - 1
    int below(int limit) { return static_cast<int>(m_engine() % static_cast<quint32>(limit)); }
    int between(int low, int high) { return low + below(high - low + 1); }

private:
    std::mt19937 m_engine;
};

QList<DemoItem> soldItems()
{
    QList<DemoItem> items = demoItems();
    items.removeIf([](const DemoItem &item) { return !item.enabled; });
    return items;
}

/// Seconds of the day, each once, so that no two sales share an ID.
QList<int> distinctSeconds(Dice &dice, int count, int first, int length)
{
    std::set<int> seconds;
    const int wanted = std::min(count, length);
    while (static_cast<int>(seconds.size()) < wanted)
        seconds.insert(first + dice.below(length));
    return {seconds.cbegin(), seconds.cend()};
}

DemoPurchase purchaseAt(const QDateTime &time, const QList<DemoItem> &items, Dice &dice)
{
    DemoPurchase purchase;
    std::set<int> chosen;
    const int lines = dice.between(1, 5);
    while (static_cast<int>(chosen.size()) < lines)
        chosen.insert(dice.below(static_cast<int>(items.size())));
    std::vector<PurchaseLine> sold;
    for (const int index : chosen) {
        const DemoItem &item = items.at(index);
        const int quantity = dice.between(1, 3);
        const int cents = quantity * item.cents;
        purchase.cents += cents;
        sold.push_back({QString::number(quantity), itemKey(item.id, item.name), formatMoney(cents / 100.0)});
    }
    purchase.id = purchaseId(time);
    purchase.items = purchasedItems(sold);
    purchase.lines = lines;
    purchase.date = purchasedDate(time);
    purchase.user = dice.below(4) == 0 ? u"MANAGER"_s : u"CASHIER"_s;
    return purchase;
}

/// Saturdays are busy, Sundays are quiet.
int salesOn(const QDate &day, Dice &dice)
{
    const int usual = dice.between(9, 16);
    if (day.dayOfWeek() == Qt::Saturday)
        return usual + 8;
    return day.dayOfWeek() == Qt::Sunday ? usual / 2 : usual;
}

/// Today's sales lie between opening and now, or between midnight and now when the shop is not open yet.
QList<int> secondsToday(const QDateTime &now, Dice &dice)
{
    const int elapsed = QTime(0, 0).secsTo(now.time());
    const int first = elapsed > openingSecond + salesToday ? openingSecond : 0;
    return elapsed > first ? distinctSeconds(dice, salesToday, first, elapsed - first) : QList<int>();
}

} // namespace

QList<DemoPurchase> demoPurchases(const QDateTime &now)
{
    Dice dice(20240229);
    const QList<DemoItem> items = soldItems();
    QList<DemoPurchase> purchases;
    for (int ago = pastDays; ago >= 0; --ago) {
        const QDate day = now.date().addDays(-ago);
        const QList<int> seconds =
            ago == 0 ? secondsToday(now, dice) : distinctSeconds(dice, salesOn(day, dice), openingSecond, openSeconds);
        for (const int second : seconds)
            purchases << purchaseAt(QDateTime(day, QTime(0, 0).addSecs(second)), items, dice);
    }
    return purchases;
}

} // namespace harrowby::app
