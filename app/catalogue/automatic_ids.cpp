// SPDX-License-Identifier: MIT
#include "app/catalogue/automatic_ids.h"

#include "app/records/statement_pieces.h"
#include "basic/numbers.h"
#include "basic/stock_id.h"

using namespace Qt::StringLiterals;

namespace harrowby::app {

Records::Answer<AutomaticIds::Series> AutomaticIds::begin(const QString &prefix) const
{
    const QString pattern = escapedForLike(prefix) + u"-%"_s;
    const auto ids = m_records.read({u"select StockID from StockList where StockID like ? escape '\\'"_s, {pattern}});
    if (!ids)
        return Unexpected(ids.error());
    Series series;
    double marked = 0; // the form begins behind the count of those that are marked
    for (const RecordRow &row : *ids) {
        const QString id = recordText(row.constFirst());
        series.taken.insert(id.toUpper()); // by which the till finds it
        marked += id.compare(prefix + markedIdEnding, Qt::CaseInsensitive) == 0 ? 1 : 0;
    }
    const auto codes =
        m_records.read(kept::code(), {u"select Code from HarrowbyCode where Code like ? escape '\\'"_s, {pattern}});
    if (!codes)
        return Unexpected(codes.error());
    for (const RecordRow &row : *codes)
        series.taken.insert(recordText(row.constFirst())); // letter by letter, as a scan finds it
    series.last = toInt16(marked).value_or(0);
    return series;
}

Records::Answer<QString> AutomaticIds::next(const QString &category)
{
    const QString prefix = automaticIdPrefix(category);
    auto found = m_series.find(prefix);
    if (found == m_series.end()) {
        auto begun = begin(prefix);
        if (!begun)
            return Unexpected(begun.error());
        found = m_series.insert(prefix, *std::move(begun));
    }
    Series &series = *found;
    if (series.hasEnded)
        return QString();
    std::int16_t number = series.last;
    const QString id = freeAutomaticId(prefix, series.last, [&](const QString &one) {
        ++number;
        return series.taken.contains(one.toUpper()) || m_isInFile(one);
    });
    series.last = number;
    series.hasEnded = id.isEmpty();
    return id;
}

} // namespace harrowby::app
