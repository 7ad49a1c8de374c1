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

/// `what` is "password" or "user name". What holds nothing but white space is blank here, though the login trims spaces
/// alone.
Result<void, QString> check(const QString &entry, const QString &what)
{
    if (entry.trimmed().isEmpty())
        return Unexpected(u"Please enter a %1."_s.arg(what));
    if (entry.contains(u'\''))
        return Unexpected(u"A %1 cannot hold a single quote (')."_s.arg(what));
    if (hasUntypable(entry))
        return Unexpected(u"A %1 cannot hold characters that cannot be typed."_s.arg(what));
    return {};
}

/// As SQLite's UPPER.
QString upperCaseAscii(QString text)
{
    for (QChar &c : text) {
        if (c >= u'a' && c <= u'z')
            c = c.toUpper();
    }
    return text;
}

} // namespace

Result<void, QString> checkPassword(const QString &password)
{
    return check(password, u"password"_s);
}

Result<void, QString> checkRepeated(const QString &password, const QString &again)
{
    if (storedPassword(password) != storedPassword(again))
        return Unexpected(u"The two entries differ. Please type the password again."_s);
    return {};
}

Result<void, QString> checkUserName(const QString &name)
{
    return check(name, u"user name"_s);
}

QString storedPassword(const QString &password)
{
    return trimmedUpper(password);
}

QString storedUserName(const QString &name)
{
    return trimmedUpper(name);
}

bool canBeTyped(const QString &stored)
{
    const QString compared = upperCaseAscii(stored);
    return !compared.isEmpty() && !compared.contains(u'\'') && !hasUntypable(compared) &&
           trimmedUpper(compared) == compared;
}

bool hasUntypable(const QString &text)
{
    // Half of a surrogate pair has no UTF-8 form, so it would be stored as something else.
    return hasControlCharacter(text) || !text.isValidUtf16();
}

} // namespace harrowby::app
