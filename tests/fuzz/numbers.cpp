// SPDX-License-Identifier: MIT
// Figures that are typed, or stand as text in a column that others may have written.
#include "tests/fuzz/fuzz.h"

#include "basic/cart_arithmetic.h"
#include "basic/numbers.h"
#include "basic/values.h"

#include <cmath>

using namespace harrowby;
using namespace harrowby::fuzz;

namespace {

void readsBack(double value)
{
    demand(std::isfinite(value), "a number that was read is finite");
    demand(leadingNumber(plainText(value)) == value, "the shortest text reads back");
    demand(isNumeric(plainText(value)), "the shortest text is a number");
    demand(isNumeric(formatMoney(value)) && isNumeric(formatFixed(value)) && isNumeric(formatCount(value)),
           "what is shown is a number");
    demand(leadingNumberWithoutCommas(formatMoney(value)) == leadingNumber(formatFixed(value)),
           "grouping changes no number");
    if (const auto small = toInt16(value))
        demand(std::abs(*small - value) <= 0.5, "a 16-bit integer is the nearest");
    if (const auto single = toSingle(value))
        demand(static_cast<float>(asStored(*single)) == *single, "a stored figure is the same 32-bit float");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QString text = asText(data, size);
    readsBack(leadingNumber(text));
    readsBack(leadingNumberWithoutCommas(text));
    const auto whole = wholeNumber(text);
    demand(!whole || isNumeric(text), "only what is numeric is a number");
    if (whole)
        readsBack(*whole);
    const DbValue stored = DbValue(text);
    demand(valueNumber(stored) == leadingNumber(text) || std::isfinite(valueNumber(stored)), "a text column is finite");
    static_cast<void>(valueInt16(stored));
    static_cast<void>(valueIsTrue(stored));
    demand(!valueEqualsTrue(stored) || valueIsTrue(stored), "what equals true is true");
    static_cast<void>(unitCost(text));
    CostTotal total;
    total.add(text);
    total.add(text);
    demand(std::isfinite(total.value()), "a total is finite");
    return 0;
}
