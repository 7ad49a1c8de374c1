// SPDX-License-Identifier: MIT
#pragma once

#include "basic/result.h"

#include <QString>
#include <QStringView>

namespace harrowby::app {

inline constexpr qsizetype longestCode = 64; ///< characters

/// The code without blanks around it, or in a few words what makes it none: it is empty or too long, or holds
/// something that no person sees: control characters, NUL included, marks that turn the direction of writing, halves of
/// characters.
[[nodiscard]] Result<QString, QString> checkCode(const QString &text);

/// Any text so that a line can show it: what is unseen becomes a dot, and what is long is cut.
[[nodiscard]] QString shownCode(const QString &text);

} // namespace harrowby::app
