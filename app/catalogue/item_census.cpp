// SPDX-License-Identifier: MIT
#include "app/catalogue/item_census.h"

#include "basic/stock_id.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr qsizetype censusPiece = 400;

} // namespace

ItemKey ItemCensus::keyOf(const ImportLine &line) const
{
    // The words by which the stock form asks for an automatic ID.
    if (const QString id = cellOf(line, IdColumn); !id.isEmpty() && id != automaticIdText)
        return {id, {}};
    return m_byCode.value(line.line);
}

Repeats ItemCensus::keysLike(const QString &capitals) const
{
    const Repeats same = m_keys.value(capitals);
    const Repeats small = m_smallKeys.value(capitals);
    if (same.rows == 0 || small.rows == 0)
        return same.rows == 0 ? small : same;
    return {same.rows + small.rows, std::min(same.firstLine, small.firstLine)};
}

Records::Answer<bool> ItemCensus::take(const ImportFile &file, const ImportChoices &choices, KnownCodes *codes,
                                       const WorkWatch &watch)
{
    ImportLines lines(file, choices);
    QList<ImportLine> piece;
    ImportLine line;
    bool isThere = true;
    while (isThere) {
        isThere = lines.next(line);
        if (isThere && !line.hasFault())
            piece << line;
        if (isThere && piece.size() < censusPiece)
            continue;
        if (const auto failure = count(piece, codes))
            return Unexpected(*failure);
        piece.clear();
        if (!watch({u"The file is being read …"_s, lines.percent()}))
            return false;
    }
    return true;
}

std::optional<DbFailure> ItemCensus::count(const QList<ImportLine> &piece, KnownCodes *codes)
{
    QStringList unresolved;
    for (const ImportLine &line : piece) {
        if (const QString code = cellOf(line, CodeColumn); codes != nullptr && !code.isEmpty()) {
            m_codes[longestSpelling(code)].count(line.line);
            if (keyOf(line).id.isEmpty())
                unresolved << code;
        }
    }
    if (codes != nullptr) {
        if (auto failure = codes->lookUp(unresolved))
            return failure;
    }
    for (const ImportLine &line : piece) {
        const QString code = cellOf(line, CodeColumn);
        if (codes != nullptr && !code.isEmpty() && keyOf(line).id.isEmpty()) {
            const KnownCodes::Owner owner = codes->ownerOf(code);
            m_byCode.insert(line.line, {owner.stockId, owner.problem});
        }
        if (const QString id = keyOf(line).id; !id.isEmpty()) {
            m_keys[id].count(line.line);
            if (const QString capitals = id.toUpper(); capitals != id)
                m_smallKeys[capitals].count(line.line);
        }
        if (const QString name = cellOf(line, NameColumn).toUpper(); !name.isEmpty())
            m_names[name].count(line.line);
    }
    return {};
}

} // namespace harrowby::app
