// SPDX-License-Identifier: MIT
#include "postgres/dialect.h"

#include "postgres/edits.h"
#include "postgres/row_order.h"
#include "postgres/sql_tokens.h"
#include "postgres/storable.h"

#include <algorithm>
#include <array>
#include <optional>

using namespace Qt::StringLiterals;

namespace harrowby::postgres {

namespace {

bool isOneOf(const SqlTokens &tokens, qsizetype token, std::initializer_list<QLatin1StringView> words)
{
    return std::any_of(words.begin(), words.end(), [&](QLatin1StringView word) { return tokens.is(token, word); });
}

/// Token behind a number with an optional sign, or a parameter, at `token`; `token` itself when there is none.
qsizetype behindNumber(const SqlTokens &tokens, qsizetype token)
{
    const qsizetype number = token + (isOneOf(tokens, token, {"-"_L1, "+"_L1}) ? 1 : 0);
    return tokens.isKind(number, TokenKind::Number) || tokens.isKind(number, TokenKind::Parameter) ? number + 1 : token;
}

/// To a file's engine a negative limit is none, and a negative offset is 0.
QString amount(const SqlTokens &tokens, qsizetype begin, qsizetype end, const QString &whenNegative)
{
    return tokens.is(begin, "-"_L1) ? whenNegative : tokens.between(begin, end);
}

/// `Limit a, b`, `Limit b Offset a` and `Limit b`.
void putLimit(const SqlTokens &tokens, qsizetype limit, Edits &edits)
{
    const qsizetype first = limit + 1;
    const qsizetype separator = behindNumber(tokens, first);
    const bool isPair = isOneOf(tokens, separator, {","_L1, "offset"_L1});
    const qsizetype second = isPair ? separator + 1 : separator;
    const qsizetype end = isPair ? behindNumber(tokens, second) : separator;
    if (separator == first || (isPair && end == second))
        return;
    const bool isSkipFirst = tokens.is(separator, ","_L1);
    QString text = amount(tokens, isSkipFirst ? second : first, isSkipFirst ? end : separator, u"all"_s);
    if (isPair)
        text += u" Offset "_s + amount(tokens, isSkipFirst ? first : second, isSkipFirst ? separator : end, u"0"_s);
    const qsizetype begin = tokens.at(first).begin;
    edits.replace(begin, tokens.at(end - 1).begin + tokens.at(end - 1).length - begin, text);
}

/// A SELECT in parentheses behind FROM or JOIN needs a name.
void nameDerived(const SqlTokens &tokens, qsizetype parenthesis, Edits &edits)
{
    if (!isOneOf(tokens, parenthesis - 1, {"from"_L1, "join"_L1}) || !tokens.is(parenthesis + 1, "select"_L1))
        return;
    const qsizetype closing = tokens.closing(parenthesis);
    if (closing == tokens.count())
        return;
    const bool isNamed =
        tokens.isName(closing + 1) &&
        !isOneOf(tokens, closing + 1,
                 {"where"_L1, "group"_L1, "order"_L1, "limit"_L1, "join"_L1, "on"_L1, "using"_L1, "inner"_L1, "left"_L1,
                  "cross"_L1, "natural"_L1, "union"_L1, "intersect"_L1, "except"_L1, "having"_L1});
    if (!isNamed)
        edits.insert(tokens.at(closing).begin + 1, u" as derived_%1"_s.arg(parenthesis));
}

/// `like PATTERN escape '\'`: of an operator of its own, as to `like` alone a backslash is a character like any other.
void putEscape(const SqlTokens &tokens, qsizetype like, Edits &edits)
{
    const bool hasPattern =
        tokens.isKind(like + 1, TokenKind::Literal) || tokens.isKind(like + 1, TokenKind::Parameter);
    if (!hasPattern || !tokens.is(like + 2, "escape"_L1) || tokens.plain(like + 3) != u"\\"_s)
        return;
    edits.replace(tokens.at(like).begin, tokens.at(like).length, u"~~~"_s);
    const qsizetype begin = tokens.at(like + 2).begin;
    edits.replace(begin, tokens.at(like + 3).begin + tokens.at(like + 3).length - begin, {});
}

/// Tokens of `UPPER(column) like '*TEXT*'`.
constexpr qsizetype sizeOfSearch = 6;

/// TEXT of such a condition that begins at this token; nothing where none does.
std::optional<QString> searchedText(const SqlTokens &tokens, qsizetype upper)
{
    const qsizetype pattern = upper + sizeOfSearch - 1;
    if (!tokens.is(upper, "upper"_L1) || !tokens.is(upper + 1, "("_L1) || !tokens.isName(upper + 2) ||
        !tokens.is(upper + 3, ")"_L1) || !tokens.is(upper + 4, "like"_L1) ||
        !tokens.isKind(pattern, TokenKind::Literal))
        return {};
    const QString text = tokens.plain(pattern);
    if (text.size() < 2 || !text.startsWith(u'*') || !text.endsWith(u'*'))
        return {};
    return text.sliced(1, text.size() - 2);
}

/// The text may stand anywhere.
void putSearch(const SqlTokens &tokens, qsizetype upper, Edits &edits)
{
    const std::optional<QString> text = searchedText(tokens, upper);
    if (!text)
        return;
    const qsizetype pattern = upper + sizeOfSearch - 1;
    const QString column =
        tokens.isKind(upper + 2, TokenKind::Name) ? quotedName(tokens.plain(upper + 2)) : tokens.plain(upper + 2);
    const qsizetype begin = tokens.at(upper).begin;
    edits.replace(begin, tokens.at(pattern).begin + tokens.at(pattern).length - begin,
                  u"harrowby_finds(%1, %2)"_s.arg(literal(*text), column));
}

/// What every statement needs.
void putWords(const SqlTokens &tokens, Edits &edits)
{
    for (qsizetype token = 0; token < tokens.count(); ++token) {
        if (tokens.isKind(token, TokenKind::Name))
            edits.replace(tokens.at(token).begin, tokens.at(token).length, quotedName(tokens.plain(token)));
        else if (tokens.is(token, "("_L1))
            nameDerived(tokens, token, edits);
        else if (tokens.isKind(token, TokenKind::Word) && tokens.is(token, "limit"_L1))
            putLimit(tokens, token, edits);
        else if (tokens.isKind(token, TokenKind::Word) && tokens.is(token, "like"_L1))
            putEscape(tokens, token, edits);
    }
}

void putSelect(const SqlTokens &tokens, Search search, Edits &edits)
{
    putWords(tokens, edits);
    for (qsizetype token = 0; search == Search::Anywhere && token < tokens.count(); ++token)
        putSearch(tokens, token, edits);
    edits.replace(tokens.end(), tokens.statement().size() - tokens.end(), {});
}

/// Whether rows are changed, also within a WITH; other words of this kind (FOR UPDATE) do not begin anything.
bool changesRows(const SqlTokens &tokens)
{
    for (qsizetype token = 0; token < tokens.count(); ++token) {
        const bool begins = token == 0 || isOneOf(tokens, token - 1, {"("_L1, ")"_L1});
        if (begins && tokens.isKind(token, TokenKind::Word) &&
            isOneOf(tokens, token, {"insert"_L1, "update"_L1, "delete"_L1, "merge"_L1}))
            return true;
    }
    return false;
}

/// SELECT … INTO makes a table.
bool selectsValues(const SqlTokens &tokens)
{
    const bool isEmpty = tokens.count() < 2 || tokens.is(1, "from"_L1);
    return isOneOf(tokens, 0, {"select"_L1, "with"_L1, "values"_L1}) && !isEmpty && !changesRows(tokens) &&
           tokens.find("into"_L1, 0, tokens.count(), 0) == tokens.count();
}

Result<SqlTokens, QString> selectTokens(const QString &statement)
{
    auto tokens = SqlTokens::of(statement);
    if (tokens && !selectsValues(*tokens))
        return Unexpected(u"the statement is no SELECT"_s);
    return tokens;
}

} // namespace

ServerText selectText(const QString &statement, Search search)
{
    const auto tokens = selectTokens(statement);
    if (!tokens)
        return Unexpected(tokens.error());
    Edits edits;
    orderRows(*tokens, Clauses(*tokens), edits);
    putSelect(*tokens, search, edits);
    return edits.appliedTo(tokens->statement());
}

bool searches(const QString &select)
{
    if (!select.contains("like"_L1, Qt::CaseInsensitive)) // hardly any has
        return false;
    const auto tokens = SqlTokens::of(select);
    for (qsizetype token = 0; tokens && token < tokens->count(); ++token) {
        if (searchedText(*tokens, token))
            return true;
    }
    return false;
}

ServerText countText(const QString &select, Search search)
{
    const auto tokens = selectTokens(select);
    if (!tokens)
        return Unexpected(tokens.error());
    const Clauses clauses(*tokens);
    Edits edits;
    QString counted;
    if (clauses.isPlain && clauses.order < clauses.end) {
        // Without its order, which makes no difference to the number.
        const QString rest =
            clauses.limit < clauses.end ? u' ' + tokens->between(clauses.limit, clauses.end) : QString();
        const auto unordered = SqlTokens::of(tokens->between(0, clauses.order) + rest);
        if (!unordered)
            return Unexpected(unordered.error());
        putSelect(*unordered, search, edits);
        counted = edits.appliedTo(unordered->statement());
    } else {
        putSelect(*tokens, search, edits);
        counted = edits.appliedTo(tokens->statement());
    }
    return u"Select count(*) from (%1) as counted"_s.arg(counted);
}

ServerText changeText(const QString &statement)
{
    const auto tokens = SqlTokens::of(statement);
    if (!tokens)
        return Unexpected(tokens.error());
    if (!isOneOf(*tokens, 0, {"insert"_L1, "update"_L1, "delete"_L1, "with"_L1}) || !changesRows(*tokens))
        return Unexpected(u"the statement is no UPDATE, INSERT or DELETE"_s);
    if (const auto reason = unstorable(statement))
        return Unexpected(*reason);
    Edits edits;
    putWords(*tokens, edits);
    edits.replace(tokens->end(), statement.size() - tokens->end(), {});
    return edits.appliedTo(tokens->statement());
}

ServerText withValues(const QString &statement, const QList<DbValue> &values)
{
    const auto tokens = SqlTokens::of(statement);
    if (!tokens)
        return Unexpected(tokens.error());
    Edits edits;
    qsizetype latest = 0; // 1-based
    qsizetype most = 0;
    for (qsizetype token = 0; token < tokens->count(); ++token) {
        if (!tokens->isKind(token, TokenKind::Parameter))
            continue;
        const QStringView number = tokens->text(token).sliced(1);
        latest = number.isEmpty() ? latest + 1 : number.toLongLong();
        most = std::max(most, latest);
        if (latest < 1 || latest > values.size())
            return Unexpected(u"the statement lacks a value"_s);
        // In parentheses: two minus signs would begin a comment.
        const QString text = literal(values.at(latest - 1));
        edits.replace(tokens->at(token).begin, tokens->at(token).length,
                      text.startsWith(u'-') ? u'(' + text + u')' : text);
    }
    if (most < values.size())
        return Unexpected(u"the statement has a value too many"_s);
    return edits.appliedTo(tokens->statement());
}

} // namespace harrowby::postgres
