// SPDX-License-Identifier: MIT
#pragma once

#include "basic/result.h"

#include <QList>
#include <QString>
#include <QStringView>

namespace harrowby::postgres {

enum class TokenKind {
    Word,      ///< a keyword, or a name that is not quoted
    Name,      ///< a quoted name: "…", […] or `…`
    Literal,   ///< '…'
    Number,    ///< without a sign
    Parameter, ///< ?, ?1
    Sign,      ///< any other character, one each
    Comment,   ///< -- or /* */
};

/// A piece of a statement. Blanks lie between pieces.
struct SqlToken
{
    TokenKind kind = TokenKind::Sign;
    qsizetype begin = 0;
    qsizetype length = 0;
    int depth = 0; ///< of parentheses; a parenthesis has the depth around it
};

/// A statement as its pieces.
class SqlTokens
{
public:
    /// Fails with the reason when the text has a NUL or a quote that does not end, or has more than one statement. A
    /// semicolon at the end is left out.
    [[nodiscard]] static Result<SqlTokens, QString> of(const QString &statement);

    /// Its text, with blanks in the place of comments.
    [[nodiscard]] const QString &statement() const { return m_statement; }
    [[nodiscard]] qsizetype count() const { return m_tokens.size(); }
    [[nodiscard]] const SqlToken &at(qsizetype token) const { return m_tokens.at(token); }
    /// As it is written; empty where there is no such token.
    [[nodiscard]] QStringView text(qsizetype token) const;
    /// A text or name without its quotes, and anything else as it is written.
    [[nodiscard]] QString plain(qsizetype token) const;
    /// Whether it is this word or sign, in whatever case; false where there is no such token.
    [[nodiscard]] bool is(qsizetype token, QLatin1StringView word) const;
    [[nodiscard]] bool isKind(qsizetype token, TokenKind kind) const;
    /// A table's or column's name, quoted or not.
    [[nodiscard]] bool isName(qsizetype token) const;
    /// First token from `from` on, before `end`, that is this word and has this depth; `end` when there is none.
    [[nodiscard]] qsizetype find(QLatin1StringView word, qsizetype from, qsizetype end, int depth) const;
    /// The parenthesis that closes this one; count() when there is none.
    [[nodiscard]] qsizetype closing(qsizetype parenthesis) const;
    /// What stands from one token to before another one, as it is written.
    [[nodiscard]] QString between(qsizetype from, qsizetype end) const;
    /// Place behind the last one.
    [[nodiscard]] qsizetype end() const;

private:
    QString m_statement;
    QList<SqlToken> m_tokens;
};

} // namespace harrowby::postgres
