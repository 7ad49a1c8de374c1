// SPDX-License-Identifier: MIT
#pragma once

#include "app/catalogue/import_file.h"
#include "app/csv/csv_reader.h"
#include "app/csv/stored_cell.h"

#include <QList>
#include <QString>
#include <QStringList>

namespace harrowby::app {

/// A row of the file, told by the store's columns.
struct ImportLine
{
    qint64 line = 0;
    QStringList cells;         ///< by importColumns(), not trimmed; null where the file has no such column
    QList<StoredValue> stored; ///< of an export of our own the very values, by its columns; else empty
    bool hasWords = false;     ///< of an export of our own: its last column says something
    QString column;            ///< the heading, where the row cannot be read
    QString fault;             ///< why it cannot, in words for a person; else empty

    [[nodiscard]] bool hasFault() const { return !fault.isEmpty(); }
};

/// Reads the rows of a file behind its header. Cells that are missing at the end of a row are empty: spreadsheets leave
/// them out.
class ImportLines
{
public:
    /// Both must outlive it.
    ImportLines(const ImportFile &file, const ImportChoices &choices);

    /// Give the same line each time.
    [[nodiscard]] bool next(ImportLine &line);
    [[nodiscard]] int percent() const { return m_reader.percent(); }

    /// Whether the file is an export of our own, of this kind.
    [[nodiscard]] bool isExport() const { return m_isExport; }
    /// How the file calls a column of importColumns(); the column's own name where the file has none.
    [[nodiscard]] QString heading(int column) const;

private:
    [[nodiscard]] bool nextRow();
    [[nodiscard]] QString faultText() const;
    void readCells(ImportLine &line) const;
    void readStored(ImportLine &line) const;
    void noteFault(ImportLine &line, int column, const QString &fault) const;

    const ImportChoices &m_choices;
    CsvReader m_reader;
    CsvRow m_row;
    bool m_isRowRead = false; ///< the first line is a row, and was read already
    QStringList m_headings;
    bool m_isExport = false;
    bool m_isPartOfExport = false; ///< its apostrophes are ours
};

/// The cell without blanks around it; empty when the file has none.
[[nodiscard]] QString cellOf(const ImportLine &line, int column);

/// The columns that an export of the kind has.
[[nodiscard]] const QList<StoredColumn> &exportColumns(ImportKind kind);

} // namespace harrowby::app
