// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <cstdint>
#include <optional>

/// The cart's sums.
/// Intended: 32-bit floats, except where a line is merged. Stored totals and printed receipts were always rounded so.
namespace harrowby {

/// Nearest 32-bit float; empty when the value does not fit.
[[nodiscard]] std::optional<float> toSingle(double value);

/// Price of a stock row, from its text: the leading number as a 32-bit float, 0 when it does not fit.
[[nodiscard]] float unitCost(const QString &storedCost);

/// Cost of a new or replaced line: single precision; 0 when it does not fit.
[[nodiscard]] float newLineCost(float unitCost, std::int16_t quantity);
/// Cost of a line that grew by merging: double precision.
[[nodiscard]] double mergedLineCost(float unitCost, double quantity);

/// Whether a stock of `available` units is enough for so many, compared in single precision.
[[nodiscard]] bool covers(float available, double units);

/// Sum of line costs as they show (commas and all), kept in a 32-bit float. A cost that makes it overflow is left out.
class CostTotal
{
public:
    void add(const QString &shownCost);
    [[nodiscard]] float value() const { return m_total; }

private:
    float m_total = 0.0F;
};

} // namespace harrowby
