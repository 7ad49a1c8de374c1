// SPDX-License-Identifier: MIT
// What a reader, or whoever types like one, sends to the till: a pattern in the first line, a code in the rest.
#include "tests/fuzz/fuzz.h"

#include "app/codes/code_text.h"
#include "app/codes/gtin.h"
#include "app/codes/in_store_rule.h"

#include <cmath>

using namespace harrowby::app;
using namespace harrowby::fuzz;

namespace {

void checkSpellings(const QString &code)
{
    const QStringList spellings = gtinSpellings(code);
    demand(spellings.isEmpty() != isGtin(code), "a number has spellings, and nothing else has");
    demand(spellings.isEmpty() || spellings.contains(code), "a number is among its spellings");
    for (const QString &spelling : spellings) {
        demand(isGtin(spelling) && gtinSpellings(spelling) == spellings, "each spelling is the same number");
        demand(spelling.endsWith(code) || code.endsWith(spelling), "nothing is added behind");
    }
}

void checkRule(const InStoreRule &rule, const QString &code)
{
    const auto same = InStoreRule::fromText(rule.text());
    demand(same && same->text() == rule.text(), "a rule reads back");
    const auto reading = rule.read(code);
    if (!reading)
        return;
    demand(isGtin(code) && inStoreCode(code)->startsWith(rule.prefix()), "only the shop's own numbers are read");
    demand(isDigits(reading->itemNumber), "an item's number is one");
    demand(reading->amount > 0 && std::isfinite(reading->amount), "an amount is more than nothing");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QString text = asText(data, size);
    const qsizetype line = text.indexOf(u'\n');
    const QString code = text.sliced(line + 1);
    const auto checked = checkCode(code);
    demand(!checked || (!checked->isEmpty() && checked->size() <= longestCode && !checked->contains(QChar(0))),
           "a code is short and seen");
    demand(checkCode(shownCode(code)).has_value() || shownCode(code).trimmed().isEmpty(), "what is shown is seen");
    checkSpellings(code);
    for (const int decimals : {0, 2, 3}) {
        if (const auto rule = InStoreRule::fromPattern(text.left(line), decimals))
            checkRule(*rule, code);
    }
    return 0;
}
