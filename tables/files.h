// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

namespace harrowby::tables {

/// Replaces a file atomically. Returns why it failed; empty on success, and what was there stays on failure.
[[nodiscard]] QString saveFile(const QString &path, const QByteArray &bytes);

/// The words as a file name: "Sales 2026-11-01 to 2026-11-30 by day". Characters that file systems refuse become "-".
[[nodiscard]] QString fileNameFor(const QString &words);

} // namespace harrowby::tables
