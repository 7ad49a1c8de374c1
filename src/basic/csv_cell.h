// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringView>

/// What stands in a cell of a CSV file: the one place for its quotes and for texts that look like formulas.
namespace harrowby {

/// Whether a spreadsheet would take the text for a formula. They skip leading white space, and some treat the
/// full-width forms of the signs alike.
[[nodiscard]] bool looksLikeFormula(QStringView text);

/// The text with an apostrophe in front where it looks like a formula, which makes it plain text in a spreadsheet, or
/// begins with an apostrophe itself, so that it can be read back.
[[nodiscard]] QString guardedText(const QString &text);
/// The reverse. In a file that is not known to be written by this program an apostrophe is taken off only where it
/// guards a formula.
[[nodiscard]] QString unguardedText(const QString &text, bool isOwnFile);

/// Between quotes where it has to be, its own quotes doubled: with the separator, a quote or a line break in it, or a
/// blank at either end, and where it would mean something else at the beginning of a file.
[[nodiscard]] QString quotedCell(QString text, QChar separator);

} // namespace harrowby
