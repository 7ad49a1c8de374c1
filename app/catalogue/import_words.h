// SPDX-License-Identifier: MIT
#pragma once

#include "app/catalogue/repeats.h"

#include <QString>

#include <optional>

/// What a text of a file must not be, and the words for it.
namespace harrowby::app {

/// Why the till could not work with an item of this ID, in words for a person.
[[nodiscard]] std::optional<QString> idProblem(const QString &id, const QString &name);
/// What the till keeps in capitals is refused in small letters.
[[nodiscard]] std::optional<QString> capitalsProblem(const QString &text);
/// Why a name of an item or a category is refused.
[[nodiscard]] std::optional<QString> nameProblem(const QString &name);
/// The same of a category; those that are reserved too.
[[nodiscard]] std::optional<QString> categoryProblem(const QString &category);
/// Why the text is no code of an item: what checkCode() says, and numbers that a spreadsheet has shortened.
[[nodiscard]] std::optional<QString> codeProblem(const QString &code);

/// Without what stands unseen at its ends: blanks of any kind, byte order marks, characters of no width.
[[nodiscard]] QString trimUnseen(const QString &text);
/// Whether trimUnseen() takes something away.
[[nodiscard]] bool hasUnseenEnds(const QString &text);

/// "8.9E+12": a number that a spreadsheet has shortened, so that its digits are lost.
[[nodiscard]] bool isShortened(const QString &text);

/// For what may stand in a file once alone: "TEA stands in 2 rows of the file, first in line 3."
[[nodiscard]] QString repeatsWords(const QString &what, const Repeats &repeats);
/// Why a row that could be written was left out (1), or not taken back (2), where nothing more is known.
[[nodiscard]] QString leftOutWords(int leftOut);
/// Why the rows of a category, a changed item or a new one were; where more is known.
[[nodiscard]] QString categoryStaysWords();
[[nodiscard]] QString takenNameWords();
[[nodiscard]] QString lostCategoryWords();
/// For the ID of an item that the store does not have.
[[nodiscard]] QString noItemWords(const QString &id);

} // namespace harrowby::app
