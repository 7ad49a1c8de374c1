// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace harrowby::test {

/// Whether the window has a box with this text, whatever the data in it.
[[nodiscard]] bool isKnownBox(const QString &text);

} // namespace harrowby::test
