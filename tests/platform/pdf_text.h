// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace harrowby::testing {

/// The lines of a PDF's pages as pdftotext reads them, without leading and trailing blanks; empty ones are left out.
[[nodiscard]] QList<QStringList> pdfPages(const QString &file);
/// The same of all pages together.
[[nodiscard]] QStringList pdfLines(const QString &file);

} // namespace harrowby::testing
