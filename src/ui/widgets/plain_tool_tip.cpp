// SPDX-License-Identifier: MIT
#include "ui/widgets/plain_tool_tip.h"

#include <QString>
#include <QToolTip>

using namespace Qt::StringLiterals;

namespace harrowby {

namespace {

constexpr qsizetype longestWord = 60;

/// Lets a word that no line could hold break: an invisible break after each stretch without a blank.
QString withBreaks(const QString &text)
{
    QString result;
    qsizetype wordLength = 0;
    for (const QChar c : text) {
        wordLength = c.isSpace() ? 0 : wordLength + 1;
        if (wordLength > longestWord && !c.isLowSurrogate()) {
            result += QChar(0x200B);
            wordLength = 1;
        }
        result += c;
    }
    return result;
}

} // namespace

QString asPlainRichText(const QString &text)
{
    QString html = withBreaks(text).toHtmlEscaped();
    html.replace(u"\r\n"_s, u"\n"_s);
    return u"<p style=\"white-space:pre-wrap\">"_s + html + u"</p>"_s;
}

void showPlainToolTip(const QPoint &globalPosition, const QString &text, QWidget *owner)
{
    if (text.isEmpty())
        QToolTip::hideText();
    else
        QToolTip::showText(globalPosition, asPlainRichText(text), owner);
}

} // namespace harrowby
