// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace harrowby {

/// Statement text that the program itself is made of. Only a literal converts, so nothing typed by a user
/// can pass for fixed text.
class FixedText
{
public:
    template <std::size_t N>
    consteval FixedText(const char (&literal)[N]) : m_text(literal, N - 1) // NOLINT: implicit on purpose
    {
    }
    [[nodiscard]] constexpr std::string_view view() const { return m_text; }

private:
    std::string_view m_text;
};

/// One SQL statement, put together from fixed pieces and values.
///
/// A text value stands between single quotes, and nothing escapes a quote inside it. A value that holds one
/// would end the literal early, so the whole statement is refused here, before an engine sees it; the same
/// goes for a NUL, at which the engine would stop reading. A refused statement fails like any other. What a recordset
/// adds or updates is no Statement: its values are bound (sqlite_connection.cpp), quotes included.
class Statement
{
public:
    explicit Statement(FixedText first);

    Statement &fixed(FixedText piece);
    /// Appends 'value', quotes included.
    Statement &text(const QString &value);
    /// Appends 'before' + value + 'after' within one pair of quotes.
    Statement &text(FixedText before, const QString &value, FixedText after);
    /// Appends a number in its plain decimal form; one that is not finite has none and refuses the statement.
    Statement &number(double value);
    Statement &number(std::int64_t value);

    [[nodiscard]] const QString &sql() const { return m_sql; }
    [[nodiscard]] bool isRefused() const { return !m_refusal.isEmpty(); }
    /// Why the statement is refused, for the log; empty when it is not.
    [[nodiscard]] QString refusal() const { return m_refusal; }
    /// The table that a "Select … from <table>" reads, known also when the statement is refused; else empty.
    [[nodiscard]] QString table() const;

private:
    QString m_sql;
    QString m_fixedHead; ///< the first fixed piece; it always reaches past the table's name
    QLatin1StringView m_refusal;
};

} // namespace harrowby
