// SPDX-License-Identifier: MIT
#include "basic/restored_purchase.h"

#include "basic/item_key.h"
#include "basic/numbers.h"
#include "basic/purchase_text.h"
#include "basic/text.h"

using namespace Qt::StringLiterals;

namespace harrowby {

QStringList splitPurchase(const QString &purchasedItems)
{
    return purchasedItems.split(purchase::elementJoint);
}

std::optional<RestoredLine> restoredLine(const QString &element)
{
    QString uniform = element;
    uniform.replace(purchase::quantityJoint, itemKeySeparator).replace(purchase::amountJoint, itemKeySeparator);
    const QStringList parts = uniform.split(itemKeySeparator);
    constexpr qsizetype needed = 3; // without the amount
    const std::optional<std::int16_t> quantity = toInt16(leadingNumber(parts.first()));
    if (parts.size() < needed || !quantity)
        return {};
    return RestoredLine{*quantity, trimBlanks(parts.at(1)), parts.at(2)};
}

} // namespace harrowby
