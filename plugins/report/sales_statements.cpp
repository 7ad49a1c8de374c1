// SPDX-License-Identifier: MIT
#include "plugins/report/sales_statements.h"

using namespace Qt::StringLiterals;

namespace harrowby::report {

namespace {

QString within(const Period &period, const std::optional<QString> &onlySeller)
{
    QString condition = u" FROM PurchaseCart WHERE substr(PurchasedDate,1,6) BETWEEN '%1' AND '%2'"_s.arg(
        dayKey(period.from), dayKey(period.to));
    if (onlySeller)
        condition += u" AND Users = '"_s + QString(*onlySeller).replace(u'\'', u"''"_s) + u'\'';
    return condition;
}

} // namespace

QString sumsStatement(const Period &period, const std::optional<QString> &onlySeller)
{
    return u"SELECT substr(PurchasedDate,1,6), Users, count(*), total(PurchasedItemsCost)"_s +
           within(period, onlySeller) + u" GROUP BY substr(PurchasedDate,1,6), Users"_s;
}

QString rowsStatement(const Period &period, const std::optional<QString> &onlySeller)
{
    return u"SELECT substr(PurchasedDate,1,6), Users, 1, PurchasedItemsCost"_s + within(period, onlySeller);
}

QString itemsStatement(const Period &period, const std::optional<QString> &onlySeller)
{
    return u"SELECT PurchasedItems, PurchasedItemsCost"_s + within(period, onlySeller);
}

QString probeStatement(const Period &period, const std::optional<QString> &onlySeller, int most)
{
    return u"SELECT count(*) FROM (SELECT 1"_s + within(period, onlySeller) + u" LIMIT %1)"_s.arg(most);
}

} // namespace harrowby::report
