// SPDX-License-Identifier: MIT
#pragma once

#include <QStringView>

#include <vector>

namespace harrowby::report {

/// One line of a purchase: "2 x ART-1  |  PEN = 12.80".
struct ItemLine
{
    QStringView key; ///< within the text that was read: "ART-1  |  PEN"
    double quantity = 0.0;
    double amount = 0.0;
};

struct ItemLines
{
    std::vector<ItemLine> lines;
    bool whole = false; ///< every part of the text was a line
};

/// Parses a purchase's stored text. A name may hold the separators, as nothing escapes them: a line ends at the first
/// amount that another line, or nothing, follows. `result` is overwritten, and its memory reused.
void readItemLines(QStringView text, ItemLines &result);

struct IdAndName
{
    QStringView id; ///< empty when the key has no bar
    QStringView name;
};

/// Both halves of a key, trimmed; a key without a bar is a name as it is.
[[nodiscard]] IdAndName idAndName(QStringView key);

} // namespace harrowby::report
