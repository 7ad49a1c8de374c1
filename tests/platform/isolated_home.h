// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QTemporaryDir>

namespace harrowby::testing {

/// A home folder of the test's own: settings, documents, data and print service are not the user's.
class IsolatedHome
{
public:
    /// Until told otherwise nothing answers as the print service.
    IsolatedHome();

    [[nodiscard]] QString path(const QString &below = {}) const { return m_home.filePath(below); }
    /// "Harrowby Receipts" in the documents folder.
    [[nodiscard]] QString receipts() const;
    /// The receipts in it, by name, with their paths.
    [[nodiscard]] QStringList receiptFiles() const;
    /// Removes every file, so that the next test starts with an empty home.
    void clear() const;

    /// Writes an executable shell script into the folder that stands first in PATH.
    void addProgram(const QString &name, const QString &script) const;
    void removePrograms() const;

private:
    QTemporaryDir m_home;
    QTemporaryDir m_programs;
};

} // namespace harrowby::testing
