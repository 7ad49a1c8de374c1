// SPDX-License-Identifier: MIT
#include "app/cash/amount_entry.h"

namespace harrowby::app {

bool AmountEntry::type(QChar key)
{
    const bool isPoint = key == u'.' || key == u',';
    if (isPoint) {
        if (m_whole < 0)
            m_whole = m_digits.size();
        return true;
    }
    if (key < u'0' || key > u'9')
        return false;
    const bool isLeadingZero = m_whole < 0 && m_digits.isEmpty() && key == u'0';
    const bool hasRoom = m_whole < 0 ? m_digits.size() < mostDigits : m_digits.size() < m_whole + decimals;
    if (hasRoom && !isLeadingZero)
        m_digits += key;
    return true;
}

void AmountEntry::erase()
{
    if (m_whole == m_digits.size())
        m_whole = -1;
    else
        m_digits.chop(1);
}

void AmountEntry::clear()
{
    *this = {};
}

Cents AmountEntry::cents() const
{
    const qsizetype missing = m_whole < 0 ? 0 : m_whole + decimals - m_digits.size();
    return (m_digits + QString(missing, u'0')).toLongLong();
}

} // namespace harrowby::app
