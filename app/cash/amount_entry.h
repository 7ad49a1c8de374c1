// SPDX-License-Identifier: MIT
#pragma once

#include "app/cash/money.h"

#include <QChar>
#include <QString>

namespace harrowby::app {

/// An amount of money as it is keyed in at a counter. Digits come in from the right: 1 2 5 0 is 12.50. After a point or
/// a comma they are decimals: 12.5 is 12.50 too.
class AmountEntry
{
public:
    static constexpr qsizetype mostDigits = 12;

    /// A digit, a point or a comma; false for what is none of them. What does not fit is left out.
    bool type(QChar key);
    /// Takes the last key back.
    void erase();
    void clear();

    [[nodiscard]] bool isEmpty() const { return m_digits.isEmpty() && m_whole < 0; }
    [[nodiscard]] Cents cents() const;

private:
    static constexpr qsizetype decimals = 2;

    QString m_digits;
    qsizetype m_whole = -1; ///< digits before the point; negative while there is no point
};

} // namespace harrowby::app
