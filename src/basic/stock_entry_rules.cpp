// SPDX-License-Identifier: MIT
#include "basic/stock_entry_rules.h"

#include "basic/item_key.h"
#include "basic/numbers.h"

using namespace Qt::StringLiterals;

namespace harrowby {

namespace {

/// Numeric, not negative, and a number that a double holds.
bool isAmount(const QString &text)
{
    const std::optional<double> number = wholeNumber(text);
    return number && *number >= 0.0;
}

bool isUse(const QString &text)
{
    return text.compare(enabledText, Qt::CaseInsensitive) == 0 || text.compare(disabledText, Qt::CaseInsensitive) == 0;
}

} // namespace

StockFault findFault(const StockEntry &entry)
{
    if (entry.id.isEmpty())
        return StockFault::Id;
    if (entry.category.isEmpty())
        return StockFault::Category;
    if (entry.name.isEmpty())
        return StockFault::Name;
    if (!isAmount(entry.cost))
        return StockFault::Cost;
    if (!isAmount(entry.reorderLevel))
        return StockFault::ReorderLevel;
    if (!isAmount(entry.available))
        return StockFault::Available;
    return isUse(entry.use) ? StockFault::None : StockFault::Use;
}

QString faultText(StockFault fault)
{
    switch (fault) {
    case StockFault::Id:
        return u"Invalid Category ID Entry!"_s;
    case StockFault::Category:
        return u"Invalid Category Name Selection!"_s;
    case StockFault::Name:
        return u"Invalid Item Name Entry!"_s;
    case StockFault::Cost:
        return u"Non-numeric or Invalid Stock Cost!"_s;
    case StockFault::ReorderLevel:
        return u"Non-numeric or Invalid Reorder Level!"_s;
    case StockFault::Available:
        return u"Non-numeric or Invalid Available Stock!"_s;
    case StockFault::Use:
        return u"Stock must either be Enabled or Disabled!"_s;
    default:
        return {};
    }
}

StockItem stockItem(const StockEntry &faultless)
{
    const bool enabled = faultless.use.compare(enabledText, Qt::CaseInsensitive) == 0;
    return {
        faultless.id,
        faultless.category,
        faultless.name,
        formatFixed(wholeNumber(faultless.cost).value_or(0.0)),
        wholeNumber(faultless.reorderLevel).value_or(0.0),
        wholeNumber(faultless.available).value_or(0.0),
        enabled ? QString(enabledText) : QString(disabledText),
    };
}

QString updateQuestion(const QString &listedKey, const StockItem &item)
{
    return u"Update Stock ["_s + listedKey + u"] with "_s + itemKey(item.id, item.name) + u", "_s + item.category +
           u", Unit Cost "_s + formatMoney(item.cost.toDouble()) + u", R. Level "_s + plainText(item.reorderLevel) +
           u", Avail. "_s + plainText(item.available) + u", "_s + item.use + u'?';
}

QString multipleEntriesText(const StockItem &item)
{
    return u"Stock ["_s + item.name + u"] with ID ["_s + item.id +
           u"] cannot be updated because multiple entries already exist. Change Stock ID or Item Name and try again!"_s;
}

} // namespace harrowby
