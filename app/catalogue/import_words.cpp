// SPDX-License-Identifier: MIT
#include "app/catalogue/import_words.h"

#include "app/codes/code_text.h"
#include "app/codes/gtin.h"
#include "basic/item_key.h"
#include "basic/reserved_categories.h"

#include <QRegularExpression>

#include <algorithm>
#include <iterator>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

bool isUnseenEnd(QChar c)
{
    if (c > u' ' && c < QChar(0x7f)) // the usual one, at once
        return false;
    return c.isSpace() || c.category() == QChar::Other_Format;
}

/// Joiners (U+200C, U+200D) shape the letters beside them.
bool isUnseenInside(QChar c)
{
    switch (c.category()) {
    case QChar::Other_Format:
        return c != QChar(0x200c) && c != QChar(0x200d);
    case QChar::Other_Control:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
        return true;
    default:
        return false;
    }
}

/// No statement of the till takes a single quote, and no line shows a line break.
std::optional<QString> textProblem(const QString &text)
{
    if (text.contains(u'\''))
        return u"It holds a single quote, with which the till finds nothing."_s;
    if (std::any_of(text.begin(), text.end(), isUnseenInside))
        return u"It holds a line break or another character that cannot be seen."_s;
    if (!text.isValidUtf16())
        return u"It holds half a character."_s;
    return {};
}

std::optional<QString> shortenedProblem(const QString &text)
{
    if (!isShortened(text))
        return {};
    return u"%1 is a number that a spreadsheet has shortened: its digits are lost. Format the column as text there."_s
        .arg(text);
}

} // namespace

bool hasUnseenEnds(const QString &text)
{
    return !text.isEmpty() && (isUnseenEnd(text.front()) || isUnseenEnd(text.back()));
}

QString trimUnseen(const QString &text)
{
    if (!hasUnseenEnds(text))
        return text;
    const auto begin = std::find_if_not(text.begin(), text.end(), isUnseenEnd);
    const auto end = std::find_if_not(text.rbegin(), std::make_reverse_iterator(begin), isUnseenEnd).base();
    return QString(begin, end - begin);
}

bool isShortened(const QString &text)
{
    if (!text.contains(u'+')) // the usual text, at once
        return false;
    static const QRegularExpression form(u"^[0-9]+([.,][0-9]+)?[eE]\\+[0-9]+$"_s);
    return form.match(text).hasMatch();
}

std::optional<QString> idProblem(const QString &id, const QString &name)
{
    if (auto problem = textProblem(id))
        return problem;
    if (auto problem = shortenedProblem(id))
        return problem;
    // Lists name an item by its key, and the till takes that apart again.
    if (!id.contains(u'|'))
        return {};
    const QString key = itemKey(id, name);
    if (GetIDName(key, KeyPiece::Id) != id || costLookupId(key) != id || reorderedId(key) != id)
        return u"It holds \" | \", by which lists part ID and name."_s;
    return {};
}

std::optional<QString> capitalsProblem(const QString &text)
{
    return text == text.toUpper() ? std::nullopt : std::optional(u"It is not in capitals."_s);
}

std::optional<QString> nameProblem(const QString &name)
{
    if (auto problem = textProblem(name))
        return problem;
    if (name.contains(itemKeySeparator))
        return u"It holds \"  |  \", by which lists part ID and name."_s;
    return capitalsProblem(name);
}

std::optional<QString> categoryProblem(const QString &category)
{
    if (category == allCategories)
        return u"%1 is no category that items belong to."_s.arg(category);
    return nameProblem(category);
}

std::optional<QString> codeProblem(const QString &code)
{
    if (const auto checked = checkCode(code); !checked)
        return u"This is no code: %1."_s.arg(checked.error());
    if (const QString whole = withLostZeros(code); !whole.isEmpty())
        return u"Its leading zeros are missing, as a spreadsheet leaves them out: with them it is %1. Format the "
               u"column "
               "as text there."_s.arg(whole);
    return shortenedProblem(code);
}

QString repeatsWords(const QString &what, const Repeats &repeats)
{
    return u"%1 stands in %2 rows of the file, first in line %3."_s.arg(what, QString::number(repeats.rows),
                                                                        QString::number(repeats.firstLine));
}

QString leftOutWords(int leftOut)
{
    return leftOut == 1 ? u"The store has changed since the preview."_s : u"It was changed after the import."_s;
}

QString categoryStaysWords()
{
    return u"The category has items, or was changed."_s;
}

QString takenNameWords()
{
    return u"Another item has its former name by now."_s;
}

QString lostCategoryWords()
{
    return u"Its category has been renamed or deleted since the preview."_s;
}

QString noItemWords(const QString &id)
{
    return u"There is no item %1."_s.arg(id);
}

} // namespace harrowby::app
