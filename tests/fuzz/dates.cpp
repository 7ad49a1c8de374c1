// SPDX-License-Identifier: MIT
// The days of purchases, from a column that others may have written.
#include "tests/fuzz/fuzz.h"

#include "plugins/report/period.h"

using namespace harrowby::report;
using namespace harrowby::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QString text = asText(data, size);
    for (const QString &key : {text, text.left(6)}) {
        const auto day = dayOfKey(key);
        if (!day)
            continue;
        demand(day->isValid() && *day >= firstDay() && *day <= lastDay(), "a day that can be told apart");
        demand(dayKey(*day) == key, "a day's key reads back");
        demand(!periodText({*day, *day}).isEmpty(), "a day has a text");
    }
    return 0;
}
