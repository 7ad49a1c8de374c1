// SPDX-License-Identifier: MIT
#include "app/catalogue/import_lines.h"

#include "app/catalogue/import_columns.h"
#include "app/catalogue/import_words.h"
#include "basic/csv_cell.h"
#include "basic/text.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

const QList<StoredColumn> &exportColumns(ImportKind kind)
{
    switch (kind) {
    case ImportKind::Categories:
        return categoryColumns();
    case ImportKind::Codes:
        return codeColumns();
    default:
        return itemColumns();
    }
}

QString cellOf(const ImportLine &line, int column)
{
    return trimUnseen(line.cells.at(column));
}

ImportLines::ImportLines(const ImportFile &file, const ImportChoices &choices) :
    m_choices(choices), m_reader(file.bytes, choices.form)
{
    if (!m_reader.next(m_row))
        return;
    if (!choices.hasHeadings) {
        m_isRowRead = true;
        m_headings = numberedHeadings(m_row.cells.size());
        return;
    }
    for (const QString &cell : std::as_const(m_row.cells))
        m_headings << trimBlanks(cell);
    m_isExport = isExportOf(m_headings, exportColumns(choices.kind));
    m_isPartOfExport = isPartOfExport(m_headings, exportColumns(choices.kind));
}

QString ImportLines::heading(int column) const
{
    const qsizetype place = m_choices.columns.indexOf(column);
    return place >= 0 && place < m_headings.size() ? m_headings.at(place)
                                                   : importColumns(m_choices.kind).at(column).name;
}

bool ImportLines::nextRow()
{
    if (!std::exchange(m_isRowRead, false) && !m_reader.next(m_row))
        return false;
    if (m_row.fault && m_row.fault->kind == CsvFault::Kind::TooFew) {
        m_row.fault.reset();
        m_row.cells.resize(m_headings.size());
    }
    return true;
}

bool ImportLines::next(ImportLine &line)
{
    if (!nextRow())
        return false;
    line.line = m_row.line;
    line.column.clear();
    line.fault.clear();
    line.stored.clear();
    line.hasWords = m_isExport && !m_row.cells.constLast().isEmpty();
    readCells(line);
    if (m_row.fault)
        noteFault(line, m_row.fault->column, faultText());
    return true;
}

/// What an open quote has swallowed is told, too.
QString ImportLines::faultText() const
{
    const QString words = faultWords(m_row.fault->kind);
    const bool endsWithBreak = m_row.cells.constLast().endsWith(u'\n') || m_row.cells.constLast().endsWith(u'\r');
    const qint64 last = m_row.lastLine - (endsWithBreak ? 1 : 0);
    if (m_row.fault->kind != CsvFault::Kind::OpenQuote || last <= m_row.fault->line)
        return words;
    return u"%1, lines %2 to %3."_s.arg(words.chopped(1)).arg(m_row.fault->line).arg(last);
}

void ImportLines::readCells(ImportLine &line) const
{
    line.cells.resize(importColumns(m_choices.kind).size());
    line.cells.fill(QString());
    for (qsizetype i = 0; i < m_choices.columns.size() && i < m_row.cells.size(); ++i) {
        if (const int column = m_choices.columns.at(i); column >= 0)
            line.cells[column] = unguardedText(m_row.cells.at(i), m_isPartOfExport);
    }
    if (m_isExport && !m_row.fault)
        readStored(line);
}

/// A row that a person has changed so that no export writes it is one like those of other files.
void ImportLines::readStored(ImportLine &line) const
{
    const QList<StoredColumn> &columns = exportColumns(m_choices.kind);
    int faulty = 0;
    auto stored = readStoredRow(m_row.cells, columns, m_choices.form.decimalSign, &faulty);
    if (stored)
        line.stored = *std::move(stored);
    else if (m_choices.asStored)
        noteFault(line, faulty, u"The cell is not as an export writes it."_s);
    else if (const int bytes = columnOfBytes(m_row.cells, columns); bytes >= 0)
        noteFault(line, bytes,
                  u"The cell holds bytes, and the row was changed so that it is no longer as an export writes it. "
                  "Empty its cell \"%1\" to import the row as it reads."_s.arg(asStoredHeading()));
}

void ImportLines::noteFault(ImportLine &line, int column, const QString &fault) const
{
    line.column = m_headings.value(column);
    line.fault = fault;
}

} // namespace harrowby::app
