// SPDX-License-Identifier: MIT
#include "app/catalogue/new_ids.h"

#include "app/catalogue/import_words.h"
#include "app/codes/code_text.h"
#include "app/records/statement_pieces.h"

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

/// SQLite puts no letters but those of English in capitals: an "é" of the store stays one.
QString ofOtherLetters(const QString &id)
{
    QString small = id.toLower();
    for (QChar &c : small) {
        if (c >= u'a' && c <= u'z')
            c = c.toUpper();
    }
    return small;
}

} // namespace

std::optional<DbFailure> NewIds::lookUp(const QStringList &ids)
{
    m_items.clear();
    m_owners.clear();
    if (ids.isEmpty())
        return {};
    auto failure = lookUpItems(ids);
    return failure ? failure : lookUpCodes(ids);
}

std::optional<DbFailure> NewIds::lookUpItems(const QStringList &ids)
{
    QList<RecordValue> values;
    values.reserve(ids.size());
    for (const QString &id : ids) {
        const QString capitals = id.toUpper();
        values << capitals;
        if (const QString other = ofOtherLetters(id); other != capitals)
            values << other;
    }
    const auto items = m_records.read(
        {u"select StockID, StockName from StockList where UPPER(StockID) in (%1)"_s.arg(placesFor(values.size())),
         values});
    if (!items)
        return items.error();
    for (const RecordRow &item : *items) {
        const QString id = recordText(item.at(0));
        m_items.insert(id.toUpper(), itemWords(recordText(item.at(1)), id));
    }
    return {};
}

std::optional<DbFailure> NewIds::lookUpCodes(const QStringList &ids)
{
    if (!m_hasCodes) {
        const auto any = m_records.read(kept::code(), {u"select Code from HarrowbyCode limit 1"_s, {}});
        if (!any)
            return any.error();
        m_hasCodes = !any->isEmpty();
    }
    if (!*m_hasCodes)
        return {};
    QList<RecordValue> values;
    for (const QString &id : ids) {
        for (const QString &spelling : spellingsOf(id))
            values << spelling;
    }
    const auto codes =
        m_records.read(kept::code(), {u"select c.Code, s.StockID, s.StockName from HarrowbyCode c join StockList s on "
                                      "s.StockID = c.StockID where c.Code in (%1)"_s.arg(placesFor(values.size())),
                                      values});
    if (!codes)
        return codes.error();
    for (const RecordRow &code : *codes)
        m_owners.insert(recordText(code.at(0)), itemWords(recordText(code.at(2)), recordText(code.at(1))));
    return {};
}

std::optional<QString> NewIds::problemOf(const QString &id) const
{
    const QString capitals = id.toUpper();
    if (const auto same = m_items.constFind(capitals); same != m_items.constEnd())
        return u"It is the ID of %1 but for small letters and capitals, which the till does not tell apart."_s.arg(
            *same);
    if (const Repeats repeats = m_census.keysLike(capitals); repeats.rows > 1)
        return u"But for small letters and capitals the ID stands in %1 rows of the file, first in line %2."_s
            .arg(repeats.rows)
            .arg(repeats.firstLine);
    if (auto problem = capitalsProblem(id))
        return problem;
    for (const QString &spelling : m_owners.isEmpty() ? QStringList() : spellingsOf(id)) {
        if (const auto owner = m_owners.constFind(spelling); owner != m_owners.constEnd())
            return u"It is a code of %1: a scan would find two items."_s.arg(*owner);
    }
    return {};
}

} // namespace harrowby::app
