// SPDX-License-Identifier: MIT
#include "app/shop/password_rules.h"

#include "basic/text.h"

#include <QList>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

bool hasControlCharacter(const QString &text)
{
    const auto ucs4 = text.toUcs4();
    return std::any_of(ucs4.cbegin(), ucs4.cend(), [](char32_t c) {
        const QChar::Category category = QChar::category(c);
        return category == QChar::Other_Control || category == QChar::Separator_Line ||
               category == QChar::Separator_Paragraph;
    });
}

} // namespace

Result<void, QString> checkPassword(const QString &password)
{
    if (password.trimmed().isEmpty())
        return Unexpected(u"Please enter a password."_s);
    if (password.contains(u'\''))
        return Unexpected(u"A password cannot hold a single quote (')."_s);
    if (hasUntypable(password))
        return Unexpected(u"A password cannot hold characters that cannot be typed."_s);
    return {};
}

QString storedPassword(const QString &password)
{
    return trimmedUpper(password);
}

bool hasUntypable(const QString &text)
{
    // Half of a surrogate pair has no UTF-8 form, so it would be stored as something else.
    return hasControlCharacter(text) || !text.isValidUtf16();
}

} // namespace harrowby::app
