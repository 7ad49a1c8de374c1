// SPDX-License-Identifier: MIT
#include "app/labels/symbol.h"

#include "app/codes/code_text.h"
#include "app/codes/gtin.h"

#include <QByteArray>

#include <zint.h>

#include <algorithm>
#include <memory>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

struct DeleteSymbol
{
    void operator()(zint_symbol *symbol) const noexcept { ZBarcode_Delete(symbol); }
};

struct Range
{
    int from;
    int to;
};

/// What a kind of bars is beside its data.
struct Form
{
    int symbology;
    int quietLeft;
    int quietRight;
    std::vector<Range> guards;
};

Form formOf(SymbolKind kind)
{
    switch (kind) {
    case SymbolKind::Ean13:
        return {BARCODE_EANX, 11, 7, {{0, 3}, {45, 50}, {92, 95}}};
    case SymbolKind::Ean8:
        return {BARCODE_EANX, 7, 7, {{0, 3}, {31, 36}, {64, 67}}};
    case SymbolKind::UpcA: // the first and the last digit have long bars, too
        return {BARCODE_UPCA, 9, 9, {{0, 10}, {45, 50}, {85, 95}}};
    case SymbolKind::Code128:
        break;
    }
    return {BARCODE_CODE128, 10, 10, {}};
}

/// Where the digits stand below the bars.
std::vector<SymbolText> textsOf(SymbolKind kind, const QString &code, int width)
{
    switch (kind) {
    case SymbolKind::Ean13:
        return {{code.first(1), -10, 8}, {code.sliced(1, 6), 3, 42}, {code.sliced(7), 50, 42}};
    case SymbolKind::Ean8:
        return {{code.first(4), 3, 28}, {code.sliced(4), 36, 28}};
    case SymbolKind::UpcA:
        return {
            {code.first(1), -9, 8}, {code.sliced(1, 5), 10, 35}, {code.sliced(6, 5), 50, 35}, {code.sliced(11), 96, 8}};
    case SymbolKind::Code128:
        break;
    }
    return {{code, 0, width}};
}

bool isModule(const zint_symbol &symbol, int module)
{
    return ((symbol.encoded_data[0][module >> 3] >> (module & 7)) & 1) != 0;
}

std::vector<Bar> barsOf(const zint_symbol &symbol, const std::vector<Range> &guards)
{
    const auto isGuard = [&](int module) {
        return std::any_of(guards.begin(), guards.end(),
                           [&](const Range &guard) { return module >= guard.from && module < guard.to; });
    };
    std::vector<Bar> bars;
    for (int module = 0; module < symbol.width; ++module) {
        if (!isModule(symbol, module))
            continue;
        if (module > 0 && isModule(symbol, module - 1))
            ++bars.back().width;
        else
            bars.push_back({module, 1, isGuard(module)});
    }
    return bars;
}

} // namespace

SymbolKind symbolKind(const QString &code)
{
    if (!isGtin(code))
        return SymbolKind::Code128;
    switch (code.size()) {
    case 13:
        return SymbolKind::Ean13;
    case 12:
        return SymbolKind::UpcA;
    case 8:
        return SymbolKind::Ean8;
    default:
        return SymbolKind::Code128;
    }
}

std::optional<QString> barsProblem(const QString &code)
{
    const auto checked = checkCode(code);
    if (!checked)
        return checked.error();
    if (*checked != code)
        return u"it has blanks around it"_s; // which are no part of what is read
    // Beyond ASCII the bars depend on how a reader is set.
    const bool isPlain =
        std::all_of(code.cbegin(), code.cend(), [](QChar sign) { return sign >= u' ' && sign <= u'~'; });
    return isPlain ? std::nullopt : std::optional(u"bars hold plain letters, digits and signs alone"_s);
}

Result<Symbol, QString> makeSymbol(const QString &code)
{
    if (const auto problem = barsProblem(code))
        return Unexpected(*problem);
    const SymbolKind kind = symbolKind(code);
    const Form form = formOf(kind);
    const std::unique_ptr<zint_symbol, DeleteSymbol> made(ZBarcode_Create());
    if (!made)
        return Unexpected(u"there is not enough memory"_s);
    made->symbology = form.symbology;
    // The check digit, which is right, is left to the library.
    const QByteArray data = (kind == SymbolKind::Code128 ? code : code.chopped(1)).toLatin1();
    const int outcome = ZBarcode_Encode(made.get(), reinterpret_cast<const unsigned char *>(data.constData()),
                                        static_cast<int>(data.size()));
    if (outcome >= ZINT_ERROR || made->rows != 1)
        return Unexpected(u"it is too long for bars"_s);
    return Symbol{kind,
                  code,
                  made->width,
                  form.quietLeft,
                  form.quietRight,
                  barsOf(*made, form.guards),
                  textsOf(kind, code, made->width)};
}

} // namespace harrowby::app
