// SPDX-License-Identifier: MIT
#include "postgres/row_order.h"

#include "postgres/schema.h"

#include <QRegularExpression>
#include <QStringList>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace harrowby::postgres {

namespace {

struct Span
{
    qsizetype begin;
    qsizetype end;
};

/// The parts between the words at this depth. The AND of a BETWEEN separates nothing.
QList<Span> split(const SqlTokens &tokens, Span span, QLatin1StringView word)
{
    QList<Span> parts;
    qsizetype begin = span.begin;
    bool isWithinBetween = false;
    const int depth = span.begin < span.end ? tokens.at(span.begin).depth : 0;
    for (qsizetype token = span.begin; token < span.end; ++token) {
        if (tokens.at(token).depth != depth)
            continue;
        if (tokens.is(token, "between"_L1)) {
            isWithinBetween = true;
        } else if (tokens.is(token, "and"_L1) && isWithinBetween) {
            isWithinBetween = false;
        } else if (tokens.is(token, word)) {
            parts << Span{begin, token};
            begin = token + 1;
        }
    }
    parts << Span{begin, span.end};
    return parts;
}

/// The condition in small letters without blanks, a text or parameter as "?".
QString shape(const SqlTokens &tokens, Span condition)
{
    QString result;
    for (qsizetype token = condition.begin; token < condition.end; ++token) {
        const bool isValue = tokens.isKind(token, TokenKind::Literal) || tokens.isKind(token, TokenKind::Parameter);
        result += isValue ? u"?"_s : tokens.plain(token).toLower();
    }
    return result;
}

QStringList shapes(const SqlTokens &tokens, const QList<Span> &conditions)
{
    QStringList result;
    for (const Span condition : conditions)
        result << shape(tokens, condition);
    return result;
}

/// A file looks for each alternative in an index of its own, one after the other; empty where it does not.
QString orderOfAlternatives(const SqlTokens &tokens, const QList<Span> &alternatives)
{
    static const QStringList indexed{u"stockid=?"_s, u"upper(stockid)=?"_s, u"upper(stockname)=?"_s};
    QString order = u"case"_s;
    qsizetype rank = 0;
    for (const Span alternative : alternatives) {
        if (!indexed.contains(shape(tokens, alternative)))
            return {};
        // Put together, as a text of the statement may hold what arg() replaces.
        order +=
            u" when "_s + tokens.between(alternative.begin, alternative.end) + u" then "_s + QString::number(rank++);
    }
    return alternatives.size() > 1 ? order + u" end, "_s : QString();
}

/// Enabled items, also of one category and without the finished ones, come by name.
bool isByName(const QStringList &conditions)
{
    static const QStringList known{u"stockuse=?"_s, u"stockcategory=?"_s, u"stockavailable>0"_s};
    return conditions.contains(known.front()) &&
           std::all_of(conditions.begin(), conditions.end(), [](const QString &one) { return known.contains(one); });
}

/// A file looks for several IDs in their order; the column or expression of the index, or nothing.
QString columnOfList(const QStringList &conditions)
{
    static const QRegularExpression list(u"^(stockid|upper\\(stockid\\))in\\(\\?(,\\?)*\\)$"_s);
    return conditions.size() == 1 ? list.match(conditions.front()).captured(1) : QString();
}

bool isByDay(const QStringList &conditions)
{
    return std::any_of(conditions.begin(), conditions.end(),
                       [](const QString &one) { return one.startsWith(u"substr(purchaseddate,1,6)"); });
}

/// A file looks for what begins like this in an index that knows no capitals.
bool isByBeginning(const QStringList &conditions)
{
    static const QRegularExpression like(u"^stockidlike\\?(escape\\?)?$"_s);
    return conditions.size() == 1 && like.match(conditions.front()).hasMatch();
}

/// A file reads a single column from an index that holds it, when there is one, and never from the table.
QString orderOfOneColumn(const SqlTokens &tokens, const Clauses &clauses)
{
    static const QStringList indexed{u"inventorycategory categoryname"_s, u"purchasecart purchaseid"_s,
                                     u"stocklist stockid"_s};
    const QString column = tokens.plain(1).toLower();
    const bool isIndexed = clauses.from == 2 && indexed.contains(clauses.table + u' ' + column);
    return isIndexed ? column + u" nulls first, "_s : QString();
}

/// What an unordered list of one table is ordered by before the order in which its rows were added; empty or ending
/// with a comma. It follows the indexes of a store file (app/shop/schema.cpp).
QString orderOfFile(const SqlTokens &tokens, const Clauses &clauses)
{
    if (clauses.where == clauses.group)
        return orderOfOneColumn(tokens, clauses);
    const Span all{clauses.where + 1, clauses.group};
    const QList<Span> alternatives = split(tokens, all, "or"_L1);
    if (alternatives.size() > 1)
        return clauses.table == u"stocklist" ? orderOfAlternatives(tokens, alternatives) : QString();
    const QStringList conditions = shapes(tokens, split(tokens, all, "and"_L1));
    if (clauses.table == u"stocklist" && isByName(conditions))
        return u"StockName nulls first, "_s;
    if (clauses.table == u"stocklist" && isByBeginning(conditions))
        return u"lower(StockID) nulls first, "_s;
    if (const QString column = columnOfList(conditions); clauses.table == u"stocklist" && !column.isEmpty())
        return column + u" nulls first, "_s;
    if (clauses.table == u"purchasecart" && isByDay(conditions))
        return u"substr(PurchasedDate, 1, 6) nulls first, Users nulls first, PurchasedItemsCost nulls first, "
               "PurchasedDate nulls first, "_s;
    return {};
}

/// Whether the rows are put together to one: there is nothing to order then.
bool isAggregated(const SqlTokens &tokens, const Clauses &clauses)
{
    constexpr std::array functions{"count"_L1, "sum"_L1, "total"_L1, "min"_L1, "max"_L1, "avg"_L1};
    for (qsizetype token = 0; token < clauses.from; ++token) {
        const bool isFunction = std::any_of(functions.begin(), functions.end(),
                                            [&](QLatin1StringView name) { return tokens.is(token, name); });
        if (isFunction && tokens.is(token + 1, "("_L1))
            return true;
    }
    return false;
}

/// Groups come sorted by what makes them.
QString orderOfGroups(const SqlTokens &tokens, const Clauses &clauses)
{
    QStringList terms;
    for (const Span term : split(tokens, {clauses.group + 2, clauses.order}, ","_L1))
        terms << tokens.between(term.begin, term.end) + u" nulls first"_s;
    return terms.join(u", "_s);
}

qsizetype placeBehind(const SqlTokens &tokens, qsizetype token)
{
    return tokens.at(token).begin + tokens.at(token).length;
}

/// The order that the statement has: nulls are the smallest values.
void placeNulls(const SqlTokens &tokens, const Clauses &clauses, Edits &edits)
{
    for (const Span term : split(tokens, {clauses.order + 2, clauses.limit}, ","_L1)) {
        if (term.begin >= term.end || tokens.find("nulls"_L1, term.begin, term.end, 0) < term.end)
            continue;
        const bool falls = tokens.is(term.end - 1, "desc"_L1);
        edits.insert(placeBehind(tokens, term.end - 1), falls ? u" nulls last"_s : u" nulls first"_s);
    }
}

QString singleTable(const SqlTokens &tokens, qsizetype begin, qsizetype end)
{
    const qsizetype size = end - begin;
    if (size < 1 || size > 3 || (size == 3 && !tokens.is(begin + 1, "as"_L1)))
        return {};
    for (qsizetype token = begin; token < end; ++token) {
        if (!tokens.isName(token))
            return {};
    }
    const ShopTable *table = shopTable(tokens.plain(begin));
    return table != nullptr ? table->name.toLower() : QString();
}

bool hasWord(const SqlTokens &tokens, std::initializer_list<QLatin1StringView> words)
{
    return std::any_of(words.begin(), words.end(), [&](QLatin1StringView word) {
        return tokens.find(word, 0, tokens.count(), 0) < tokens.count();
    });
}

} // namespace

Clauses::Clauses(const SqlTokens &tokens)
{
    end = tokens.count();
    limit = tokens.find("limit"_L1, 0, end, 0);
    order = tokens.find("order"_L1, 0, limit, 0);
    group = tokens.find("group"_L1, 0, order, 0);
    where = tokens.find("where"_L1, 0, group, 0);
    from = tokens.find("from"_L1, 0, where, 0);
    isPlain = tokens.is(0, "select"_L1) && !tokens.is(1, "distinct"_L1) &&
              !hasWord(tokens, {"union"_L1, "intersect"_L1, "except"_L1, "having"_L1, "window"_L1, "over"_L1});
    if (isPlain)
        table = singleTable(tokens, from + 1, where);
}

void orderRows(const SqlTokens &tokens, const Clauses &clauses, Edits &edits)
{
    if (clauses.end == 0)
        return;
    const qsizetype place = placeBehind(tokens, clauses.limit - 1);
    const QString identity = QString::fromLatin1(identityColumn);
    const bool isGrouped = clauses.group < clauses.order;
    const bool isOfRows = !clauses.table.isEmpty() && !isGrouped && !isAggregated(tokens, clauses);
    if (clauses.order < clauses.limit) {
        placeNulls(tokens, clauses, edits);
        if (isOfRows)
            edits.insert(place,
                         u", "_s + identity + (tokens.is(clauses.limit - 1, "desc"_L1) ? u" desc"_s : QString()));
    } else if (isOfRows) {
        edits.insert(place, u" order by "_s + orderOfFile(tokens, clauses) + identity);
    } else if (isGrouped && clauses.isPlain) {
        edits.insert(place, u" order by "_s + orderOfGroups(tokens, clauses));
    }
}

} // namespace harrowby::postgres
