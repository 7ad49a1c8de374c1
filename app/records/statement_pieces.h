// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// Pieces of the text of a statement.
namespace harrowby::app {

/// "?, ?, ?": a place for each of so many values.
[[nodiscard]] QString placesFor(qsizetype count);

/// A text as LIKE finds it and nothing else, in a pattern with "escape '\'".
[[nodiscard]] QString escapedForLike(QString text);

} // namespace harrowby::app
