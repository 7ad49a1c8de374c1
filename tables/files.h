// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

namespace harrowby::tables {

/// Writes a whole file, or leaves what was there. Why it failed; empty when it did not.
[[nodiscard]] QString saveFile(const QString &path, const QByteArray &bytes);

/// The words as a file name: "Sales 2026-11-01 to 2026-11-30 by day". Signs that file systems refuse become "-".
[[nodiscard]] QString fileNameFor(const QString &words);

} // namespace harrowby::tables
