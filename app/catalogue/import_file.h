// SPDX-License-Identifier: MIT
#pragma once

#include "app/catalogue/import_types.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace harrowby::app {

/// A file to import, as it was when it was read.
struct ImportFile
{
    QString path;
    QByteArray bytes;
    QString hash; ///< of the bytes

    /// "catalogue.csv"
    [[nodiscard]] QString name() const;
};

/// Reads the whole file; the reason, in words for a person, when it cannot be read or is too large.
[[nodiscard]] Result<ImportFile, QString> readImportFile(const QString &path);

/// The first row, its cells without blanks around them; empty when there is none.
[[nodiscard]] QStringList headingsOf(QByteArrayView bytes, const CsvForm &form);

} // namespace harrowby::app
