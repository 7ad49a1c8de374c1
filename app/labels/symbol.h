// SPDX-License-Identifier: MIT
#pragma once

#include "basic/result.h"

#include <QString>

#include <optional>
#include <vector>

/// A code as bars. Lengths are in modules, the width of the narrowest bar, counted from the left edge of the first bar.
namespace harrowby::app {

enum class SymbolKind {
    Ean13,
    Ean8,
    UpcA,
    Code128,
};

struct Bar
{
    int from = 0;
    int width = 0;
    bool isGuard = false; ///< goes down between the digits
};

/// A part of the code below the bars, in the middle of its room.
struct SymbolText
{
    QString text;
    int from = 0; ///< left of the bars when below 0
    int width = 0;
};

struct Symbol
{
    SymbolKind kind = SymbolKind::Code128;
    QString code;
    int width = 0;     ///< of the bars
    int quietLeft = 0; ///< stays blank beside them, at the least
    int quietRight = 0;
    std::vector<Bar> bars;
    std::vector<SymbolText> texts;
};

/// By what the code is: 13, 8 and 12 digits with the right check digit are EAN-13, EAN-8 and UPC-A, everything else is
/// Code 128.
[[nodiscard]] SymbolKind symbolKind(const QString &code);

/// Why a code cannot be bars that a code reader reads back, in words for a person. Quick, and says nothing of how long
/// the bars would be.
[[nodiscard]] std::optional<QString> barsProblem(const QString &code);

/// The bars, or why there are none. May be called on any thread.
[[nodiscard]] Result<Symbol, QString> makeSymbol(const QString &code);

} // namespace harrowby::app
