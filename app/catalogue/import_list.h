// SPDX-License-Identifier: MIT
#pragma once

#include "app/catalogue/import_shelf.h"

#include <QHash>
#include <QList>
#include <QString>

namespace harrowby::app {

/// The list of an import's rows, as a person reads it.
class ImportList
{
public:
    template <typename T>
    using Answer = Records::Answer<T>;

    /// Both must outlive it.
    ImportList(Records &records, const ShelvedImport &import) : m_records(records), m_import(import) {}

    [[nodiscard]] Answer<qint64> count(RowFilter filter) const;
    /// In the order of the file, from that place (from 0) on.
    [[nodiscard]] Answer<QList<ImportedRow>> rows(RowFilter filter, qint64 from, qint64 most) const;
    /// The same behind a line of the file; quick wherever that is.
    [[nodiscard]] Answer<QList<ImportedRow>> rowsBehind(RowFilter filter, qint64 line, qint64 most) const;

private:
    [[nodiscard]] Answer<QList<ImportedRow>> read(const QString &condition, const QString &end,
                                                  const QList<RecordValue> &values) const;
    [[nodiscard]] ImportedRow rowOf(const RecordRow &record) const;
    [[nodiscard]] std::optional<DbFailure> addCodes(QList<ImportedRow> &rows) const;
    [[nodiscard]] std::optional<DbFailure> addPresent(QList<ImportedRow> &rows) const;

    Records &m_records;
    const ShelvedImport &m_import;
};

/// What is the matter with a row, in one word or two: "new", "not taken back"; nothing for all of them.
[[nodiscard]] QString stateWords(RowFilter state);

} // namespace harrowby::app
