// SPDX-License-Identifier: MIT
#pragma once

#include "basic/result.h"

#include <QByteArray>
#include <QString>

namespace harrowby::tables {

/// Replaces a file atomically; or why it was not done, in words for a person: what was there stays then.
[[nodiscard]] Result<void, QString> saveFile(const QString &path, const QByteArray &bytes);

/// The words as a file name: "Sales 2026-11-01 to 2026-11-30 by day". Characters that file systems refuse become "-".
[[nodiscard]] QString fileNameFor(const QString &words);

} // namespace harrowby::tables
