// SPDX-License-Identifier: MIT
#pragma once

#include "basic/result.h"

#include <harrowby/code_reader_settings.h>

#include <QString>
#include <QStringView>

namespace harrowby::app {

/// As long as a code that a reader types; but counted in QChars, so that a letter beyond the first 65,536 counts twice.
inline constexpr qsizetype longestCode = CodeReaderSettings::UsualLongest;

/// The code without blanks around it, or in a few words what makes it none: it is empty or too long, or holds
/// something that no person sees: control characters, NUL included, marks that turn the direction of writing, halves of
/// characters.
[[nodiscard]] Result<QString, QString> checkCode(const QString &text);

/// Any text so that a line can show it: what is unseen becomes a dot, and what is long is cut.
[[nodiscard]] QString shownCode(const QString &text);

} // namespace harrowby::app
