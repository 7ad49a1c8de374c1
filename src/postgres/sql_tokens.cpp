// SPDX-License-Identifier: MIT
#include "postgres/sql_tokens.h"

#include <optional>

using namespace Qt::StringLiterals;

namespace harrowby::postgres {

namespace {

bool isWordCharacter(QChar character)
{
    return character.isLetterOrNumber() || character == u'_' || character.unicode() >= 0x80;
}

bool isBlank(QChar character)
{
    return character == u' ' || (character >= u'\t' && character <= u'\r');
}

bool isDigit(QChar character)
{
    return character >= u'0' && character <= u'9';
}

/// Place behind the quote that ends what begins at `begin`; nothing when it does not end. A doubled quote is one
/// within.
std::optional<qsizetype> endOfQuoted(QStringView text, qsizetype begin, QChar quote)
{
    const bool doubles = quote != u']';
    for (qsizetype i = begin + 1; i < text.size(); ++i) {
        if (text.at(i) != quote)
            continue;
        if (!doubles || i + 1 == text.size() || text.at(i + 1) != quote)
            return i + 1;
        ++i;
    }
    return {};
}

qsizetype endOfNumber(QStringView text, qsizetype begin)
{
    qsizetype i = begin;
    while (i < text.size() && (isDigit(text.at(i)) || text.at(i) == u'.'))
        ++i;
    if (i < text.size() && text.at(i).toLower() == u'e') {
        const qsizetype sign = i + 1 < text.size() && (text.at(i + 1) == u'-' || text.at(i + 1) == u'+') ? 1 : 0;
        if (i + 1 + sign < text.size() && isDigit(text.at(i + 1 + sign))) {
            i += 1 + sign;
            while (i < text.size() && isDigit(text.at(i)))
                ++i;
        }
    }
    return i;
}

qsizetype endOfWord(QStringView text, qsizetype begin)
{
    qsizetype i = begin;
    while (i < text.size() && isWordCharacter(text.at(i)))
        ++i;
    return i;
}

/// As a file's engine reads it: a comment that does not end goes to the end of the text.
qsizetype endOfComment(QStringView text, qsizetype begin)
{
    const bool isLine = text.at(begin) == u'-';
    const qsizetype found = isLine ? text.indexOf(u'\n', begin) : text.indexOf(u"*/", begin + 2);
    return found < 0 ? text.size() : found + (isLine ? 1 : 2);
}

struct Piece
{
    TokenKind kind;
    qsizetype end;
};

/// What begins here; nothing when a quote does not end.
std::optional<Piece> pieceAt(QStringView text, qsizetype begin)
{
    const QChar first = text.at(begin);
    const QStringView rest = text.sliced(begin);
    if (first == u'\'' || first == u'"' || first == u'`' || first == u'[') {
        const auto end = endOfQuoted(text, begin, first == u'[' ? u']' : first);
        if (!end)
            return {};
        return Piece{first == u'\'' ? TokenKind::Literal : TokenKind::Name, *end};
    }
    if (rest.startsWith(u"--") || rest.startsWith(u"/*"))
        return Piece{TokenKind::Comment, endOfComment(text, begin)};
    if (isDigit(first) || (first == u'.' && rest.size() > 1 && isDigit(rest.at(1))))
        return Piece{TokenKind::Number, endOfNumber(text, begin)};
    if (first == u'?')
        return Piece{TokenKind::Parameter, endOfWord(text, begin + 1)};
    if (isWordCharacter(first))
        return Piece{TokenKind::Word, endOfWord(text, begin)};
    return Piece{TokenKind::Sign, begin + 1};
}

/// A letter right before a text makes it one of another kind, with escapes of its own; a $ begins a quote that a file
/// does not have.
bool isForeign(QStringView text, const Piece &piece, qsizetype begin)
{
    if (piece.kind == TokenKind::Sign)
        return text.at(begin) == u'$';
    if (piece.kind != TokenKind::Literal || begin == 0)
        return false;
    const auto isPrefix = [&](QChar letter) { return QStringView(u"eEbBxXnN").contains(letter); };
    const bool stands = begin == 1 || !isWordCharacter(text.at(begin - 2));
    return (isPrefix(text.at(begin - 1)) && stands) ||
           (text.at(begin - 1) == u'&' && begin > 1 && text.at(begin - 2).toLower() == u'u');
}

} // namespace

Result<SqlTokens, QString> SqlTokens::of(const QString &statement)
{
    if (statement.contains(QChar::Null))
        return Unexpected(u"the statement contains a NUL"_s);
    SqlTokens tokens;
    tokens.m_statement = statement;
    bool hasEnded = false;
    int depth = 0;
    for (qsizetype i = 0; i < statement.size();) {
        if (isBlank(statement.at(i))) {
            ++i;
            continue;
        }
        const auto piece = pieceAt(statement, i);
        if (!piece)
            return Unexpected(u"a quote in the statement does not end"_s);
        if (isForeign(statement, *piece, i))
            return Unexpected(u"a text is written in a way that a store file does not know"_s);
        SqlToken token{piece->kind, i, piece->end - i, depth};
        const QChar sign = piece->kind == TokenKind::Sign ? statement.at(i) : QChar();
        i = piece->end;
        if (hasEnded && sign != u';') // a comment too
            return Unexpected(u"there is more than one statement in the text"_s);
        if (token.kind == TokenKind::Comment) {
            tokens.m_statement.replace(token.begin, token.length, QString(token.length, u' '));
            continue;
        }
        hasEnded = hasEnded || sign == u';';
        if (sign == u')')
            token.depth = --depth;
        else if (sign == u'(')
            ++depth;
        if (!hasEnded)
            tokens.m_tokens << token;
    }
    return tokens;
}

QStringView SqlTokens::text(qsizetype token) const
{
    if (token < 0 || token >= count())
        return {};
    return QStringView(m_statement).sliced(at(token).begin, at(token).length);
}

QString SqlTokens::plain(qsizetype token) const
{
    QString text = this->text(token).toString();
    if (!isKind(token, TokenKind::Literal) && !isKind(token, TokenKind::Name))
        return text;
    const QChar quote = text.front();
    text = text.sliced(1, text.size() - 2);
    return quote == u'[' ? text : text.replace(QString(2, quote), quote);
}

bool SqlTokens::is(qsizetype token, QLatin1StringView word) const
{
    return text(token).compare(word, Qt::CaseInsensitive) == 0;
}

bool SqlTokens::isKind(qsizetype token, TokenKind kind) const
{
    return token >= 0 && token < count() && at(token).kind == kind;
}

bool SqlTokens::isName(qsizetype token) const
{
    return isKind(token, TokenKind::Word) || isKind(token, TokenKind::Name);
}

qsizetype SqlTokens::find(QLatin1StringView word, qsizetype from, qsizetype end, int depth) const
{
    for (qsizetype token = from; token < end; ++token) {
        if (at(token).depth == depth && is(token, word))
            return token;
    }
    return end;
}

qsizetype SqlTokens::closing(qsizetype parenthesis) const
{
    return find(")"_L1, parenthesis + 1, count(), at(parenthesis).depth);
}

QString SqlTokens::between(qsizetype from, qsizetype end) const
{
    if (from >= end)
        return {};
    const qsizetype begin = at(from).begin;
    return m_statement.sliced(begin, at(end - 1).begin + at(end - 1).length - begin);
}

qsizetype SqlTokens::end() const
{
    return m_tokens.isEmpty() ? 0 : m_tokens.back().begin + m_tokens.back().length;
}

} // namespace harrowby::postgres
