// SPDX-License-Identifier: MIT
#include "basic/cart_arithmetic.h"

#include "basic/numbers.h"
#include "basic/text.h"

#include <cmath>
#include <limits>

namespace harrowby {

std::optional<float> toSingle(double value)
{
    if (!std::isfinite(value) || std::abs(value) > static_cast<double>(std::numeric_limits<float>::max()))
        return std::nullopt;
    return static_cast<float>(value);
}

float unitCost(const QString &storedCost)
{
    return toSingle(leadingNumber(trimBlanks(storedCost))).value_or(0.0F);
}

float newLineCost(float unitCost, std::int16_t quantity)
{
    // The product of a 32-bit float and a 16-bit integer is exact in 64 bits, so this rounds once.
    return toSingle(static_cast<double>(unitCost) * quantity).value_or(0.0F);
}

double mergedLineCost(float unitCost, double quantity)
{
    return static_cast<double>(unitCost) * quantity;
}

bool covers(float available, double units)
{
    const std::optional<float> wanted = toSingle(units);
    return wanted && *wanted <= available;
}

void CostTotal::add(const QString &shownCost)
{
    m_total = toSingle(static_cast<double>(m_total) + leadingNumberWithoutCommas(shownCost)).value_or(m_total);
}

} // namespace harrowby
