// SPDX-License-Identifier: MIT
#include "store/statement.h"

#include "basic/numbers.h"

#include <cmath>

namespace harrowby {

namespace {

using namespace Qt::StringLiterals;

QString toQString(FixedText piece)
{
    const std::string_view text = piece.view();
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

} // namespace

Statement::Statement(FixedText first) : m_sql(toQString(first)), m_fixedHead(m_sql) {}

Statement &Statement::fixed(FixedText piece)
{
    m_sql += toQString(piece);
    return *this;
}

Statement &Statement::text(const QString &value)
{
    return text("", value, "");
}

Statement &Statement::text(FixedText before, const QString &value, FixedText after)
{
    // The store program's advice (app/shop/failure_text.cpp) looks for "text value".
    if (value.contains(u'\''))
        m_refusal = "a text value contains a single quote"_L1;
    else if (value.contains(QChar(u'\0')))
        m_refusal = "a text value contains a NUL"_L1;
    m_sql += u'\'' + toQString(before) + value + toQString(after) + u'\'';
    return *this;
}

Statement &Statement::number(double value)
{
    if (!std::isfinite(value))
        m_refusal = "a number is not finite"_L1;
    m_sql += plainText(value);
    return *this;
}

Statement &Statement::number(std::int64_t value)
{
    m_sql += QString::number(value);
    return *this;
}

QString Statement::table() const
{
    constexpr auto from = " from "_L1;
    const qsizetype found = m_fixedHead.indexOf(from, 0, Qt::CaseInsensitive);
    if (found < 0)
        return {};
    const qsizetype begin = found + from.size();
    const qsizetype end = m_fixedHead.indexOf(u' ', begin);
    return m_fixedHead.mid(begin, end < 0 ? -1 : end - begin);
}

} // namespace harrowby
