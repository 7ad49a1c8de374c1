// SPDX-License-Identifier: MIT
// The sales report by item reads the items of every purchase.
#include "tests/fuzz/fuzz.h"

#include "plugins/report/item_lines.h"

#include <cmath>

using namespace harrowby::report;
using namespace harrowby::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QString text = asText(data, size);
    static ItemLines result; // reused, as the report does
    readItemLines(text, result);
    ItemLines fresh;
    readItemLines(text, fresh);
    demand(result.whole == fresh.whole && result.lines.size() == fresh.lines.size(),
           "the memory given changes nothing");
    const QChar *at = text.constData();
    for (const ItemLine &line : result.lines) {
        demand(line.key.begin() >= at && line.key.end() <= text.constData() + text.size(),
               "keys follow one another within the text");
        demand(std::isfinite(line.quantity) && std::isfinite(line.amount), "figures are numbers");
        const IdAndName names = idAndName(line.key);
        demand(names.id.size() + names.name.size() <= line.key.size(), "both halves are of the key");
        at = line.key.end();
    }
    return 0;
}
