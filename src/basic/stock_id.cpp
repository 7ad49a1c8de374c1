// SPDX-License-Identifier: MIT
#include "basic/stock_id.h"

#include <limits>

namespace harrowby {

QString automaticIdPrefix(const QString &category)
{
    constexpr int characters = 3;
    qsizetype end = 0;
    for (int i = 0; i < characters && end < category.size(); ++i) {
        // A surrogate pair is never split: UTF-8 has no half of one.
        const bool isPair =
            category.at(end).isHighSurrogate() && category.size() > end + 1 && category.at(end + 1).isLowSurrogate();
        end += isPair ? 2 : 1;
    }
    return category.left(end).toUpper();
}

QString automaticId(const QString &prefix, std::int16_t number)
{
    constexpr int digits = 4;
    return prefix + u'-' + QString::number(number).rightJustified(digits, u'0');
}

QString freeAutomaticId(const QString &prefix, std::int16_t last, const std::function<bool(const QString &id)> &isTaken)
{
    for (std::int16_t number = last; number < std::numeric_limits<std::int16_t>::max();) {
        const QString id = automaticId(prefix, ++number);
        if (!isTaken(id))
            return id;
    }
    return {};
}

} // namespace harrowby
