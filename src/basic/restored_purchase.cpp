// SPDX-License-Identifier: MIT
#include "basic/restored_purchase.h"

#include "basic/numbers.h"
#include "basic/text.h"

using namespace Qt::StringLiterals;

namespace harrowby {

QStringList purchaseElements(const QString &purchasedItems)
{
    return purchasedItems.split(u", "_s);
}

std::optional<RestoredLine> restoredLine(const QString &element)
{
    const QString separator = u"  |  "_s;
    QString uniform = element;
    uniform.replace(u" x "_s, separator).replace(u" = "_s, separator);
    const QStringList parts = uniform.split(separator);
    constexpr qsizetype needed = 3; // without the amount, as the price is read from the stock again
    const std::optional<std::int16_t> quantity = toInt16(leadingNumber(parts.first()));
    if (parts.size() < needed || !quantity)
        return {};
    return RestoredLine{*quantity, trimBlanks(parts.at(1)), parts.at(2)};
}

} // namespace harrowby
