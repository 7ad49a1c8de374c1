// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArrayView>
#include <QString>

#include <vector>

namespace harrowby::app {

/// A text as the search compares it: two texts are the same when their keys are.
///
/// Upper-cased and then case-folded, so that "ß" is "ss" and both small sigmas are one letter; i, ı, I and İ are one
/// letter too, as Turkish and other words stand in one list. Composed (NFC), so that it
/// makes no difference how an accent was typed; the accent itself does: "e" is not "é".
[[nodiscard]] QString caselessKey(const QString &text);

/// A text that is looked for within others. Remembers the keys of letters as it meets them, so it is not for several
/// threads at once.
class SoughtText
{
public:
    explicit SoughtText(const QString &text);

    /// Whether the text stands anywhere in the other one. A byte that is no UTF-8 matches nothing that can be typed.
    [[nodiscard]] bool isIn(QByteArrayView utf8) const;

private:
    [[nodiscard]] bool isInAscii(QByteArrayView lower) const;
    [[nodiscard]] bool isInText(const QString &text) const;
    [[nodiscard]] char16_t keyOf(char16_t unit) const;

    QString m_key;
    QByteArray m_ascii; ///< the key's bytes; empty when the key is not ASCII
    bool m_isAscii;
    mutable std::vector<char16_t> m_keys; ///< one a code unit, made at the first text that is not ASCII; 0: not known
};

} // namespace harrowby::app
