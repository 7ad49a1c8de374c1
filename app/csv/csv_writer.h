// SPDX-License-Identifier: MIT
#pragma once

#include "app/csv/csv_form.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QStringView>

#include <cstdint>

namespace harrowby::app {

/// Writes rows as UTF-8 with lines that end with CR LF. How a cell is quoted, and what becomes of texts that a
/// spreadsheet would take for a formula, is decided in basic/csv_cell.h.
class CsvWriter
{
public:
    /// The form's encoding does not count.
    explicit CsvWriter(const CsvForm &form);

    CsvWriter &text(QStringView text);
    CsvWriter &figure(std::int64_t value);
    CsvWriter &figure(double value);
    void endRow();
    /// A row of texts.
    void row(const QStringList &texts);

    /// Rows that were ended, of all that was ever written.
    [[nodiscard]] qint64 rows() const { return m_rows; }
    [[nodiscard]] qsizetype size() const { return m_bytes.size(); }
    /// What was written since the last time.
    [[nodiscard]] QByteArray take();

private:
    void add(const QString &cell);

    CsvForm m_form;
    QByteArray m_bytes;
    qint64 m_rows = 0;
    int m_cells = 0;
    bool m_isOneEmpty = false; ///< the row's only cell so far is empty
};

} // namespace harrowby::app
