// SPDX-License-Identifier: MIT
#include "app/csv/csv_writer.h"

#include "app/csv/decoding.h"
#include "app/csv/figures.h"
#include "basic/csv_cell.h"

#include <utility>

namespace harrowby::app {

CsvWriter::CsvWriter(const CsvForm &form) : m_form(form)
{
    if (form.byteOrderMark)
        m_bytes = utf8Mark.toByteArray();
}

CsvWriter &CsvWriter::text(QStringView text)
{
    add(guardedText(text.toString()));
    return *this;
}

CsvWriter &CsvWriter::figure(std::int64_t value)
{
    add(writeFigure(value));
    return *this;
}

CsvWriter &CsvWriter::figure(double value)
{
    add(writeFigure(value, m_form.decimalSign));
    return *this;
}

void CsvWriter::endRow()
{
    if (m_isOneEmpty) // else it would be a line without a row
        m_bytes += "\"\"";
    m_bytes += "\r\n";
    ++m_rows;
    m_cells = 0;
    m_isOneEmpty = false;
}

void CsvWriter::row(const QStringList &texts)
{
    for (const QString &cell : texts)
        text(cell);
    endRow();
}

QByteArray CsvWriter::take()
{
    return std::exchange(m_bytes, {});
}

void CsvWriter::add(const QString &cell)
{
    if (m_cells++ > 0)
        m_bytes += m_form.separator.toLatin1();
    m_isOneEmpty = m_cells == 1 && cell.isEmpty();
    m_bytes += quotedCell(cell, m_form.separator).toUtf8();
}

} // namespace harrowby::app
