// SPDX-License-Identifier: MIT
#pragma once

#include <harrowby/db_value.h>

#include <cstdint>
#include <optional>

/// What a stored value means to the counter.
namespace harrowby {

/// What to store of a 32-bit figure: the number that its shortest decimal text names; a whole one as an integer, so
/// that a text column holds "2" and not "2.0".
[[nodiscard]] DbValue storedFigure(float value);
/// The same of a 64-bit figure.
[[nodiscard]] DbValue storedFigure(double value);
/// As text: null is empty, a real 5.0 is "5", bytes are read as UTF-8.
[[nodiscard]] QString valueText(const DbValue &value);
/// As a number: the number itself, or the leading number of the text; null and bytes without one are 0.
[[nodiscard]] double valueNumber(const DbValue &value);
/// As a 16-bit integer: a number rounded half to even, a wholly numeric text, "True" (-1) or "False" (0),
/// null (0). Empty for anything else and for what does not fit.
[[nodiscard]] std::optional<std::int16_t> valueInt16(const DbValue &value);
/// A privilege flag: a number other than 0, a text that converts to one, or "True". Anything else is false.
[[nodiscard]] bool valueIsTrue(const DbValue &value);
/// Equality with the 16-bit true: -1, or the text "True". Stricter than valueIsTrue(): 1 is not.
[[nodiscard]] bool valueEqualsTrue(const DbValue &value);

} // namespace harrowby
