// SPDX-License-Identifier: MIT
#include "app/cash/money.h"

#include "basic/numbers.h"

#include <cmath>

using namespace Qt::StringLiterals;

namespace harrowby::app {

std::optional<Cents> centsOf(double amount)
{
    constexpr double most = 9007199254740992.0; // 2^53
    const double cents = amount * 100;
    if (!std::isfinite(cents) || std::abs(cents) > most)
        return std::nullopt;
    double rounded = std::nearbyint(cents);
    // What lies next to a half may have become one by the multiplication; its error says on which side it lies.
    if (std::abs(cents - rounded) == 0.5) {
        const double error = std::fma(amount, 100.0, -cents);
        if (error != 0)
            rounded = error > 0 ? std::ceil(cents) : std::floor(cents);
    }
    return static_cast<Cents>(rounded);
}

std::optional<Cents> centsOf(float total)
{
    return centsOf(asStored(total));
}

QString centsText(Cents amount)
{
    constexpr Cents unit = 100;
    const Cents whole = amount / unit;
    const Cents rest = std::abs(amount % unit);
    const QString sign = amount < 0 && whole == 0 ? u"-"_s : QString();
    return sign + formatCount(static_cast<double>(whole)) + u'.' + QString::number(rest).rightJustified(2, u'0');
}

} // namespace harrowby::app
