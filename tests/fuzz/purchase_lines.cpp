// SPDX-License-Identifier: MIT
// A purchase that is taken back: its items are a text in a column that others may have written.
#include "tests/fuzz/fuzz.h"

#include "basic/restored_purchase.h"
#include "basic/text.h"

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QString text = asText(data, size);
    const QStringList elements = splitPurchase(text);
    demand(elements.join(u", "_s) == text, "nothing is lost between the elements");
    for (const QString &element : elements) {
        const auto line = restoredLine(element);
        if (!line)
            continue;
        demand(line->stockId == trimBlanks(line->stockId), "an ID is trimmed");
        demand(!line->stockId.contains(u"  |  "_s) && !line->stockName.contains(u"  |  "_s),
               "neither holds a separator");
    }
    return 0;
}
