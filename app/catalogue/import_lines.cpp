// SPDX-License-Identifier: MIT
#include "app/catalogue/import_lines.h"

#include "app/catalogue/import_columns.h"
#include "basic/csv_cell.h"
#include "basic/text.h"

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

ImportLines::ImportLines(const ImportFile &file, const ImportChoices &choices) :
    m_choices(choices), m_reader(file.bytes, choices.form)
{
    if (!m_reader.next(m_row))
        return;
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

bool ImportLines::next(ImportLine &line)
{
    if (!m_reader.next(m_row))
        return false;
    line.line = m_row.line;
    line.column.clear();
    line.fault.clear();
    line.stored.clear();
    line.hasWords = m_isExport && !m_row.cells.constLast().isEmpty();
    readCells(line);
    if (m_row.fault)
        noteFault(line, m_row.fault->column, faultWords(m_row.fault->kind));
    return true;
}

void ImportLines::readCells(ImportLine &line) const
{
    line.cells.resize(importColumns(m_choices.kind).size());
    line.cells.fill(QString());
    for (qsizetype i = 0; i < m_choices.columns.size() && i < m_row.cells.size(); ++i) {
        if (const int column = m_choices.columns.at(i); column >= 0)
            line.cells[column] = unguardedText(m_row.cells.at(i), m_isPartOfExport);
    }
    if (!m_isExport || m_row.fault)
        return;
    int faulty = 0;
    auto stored = readStoredRow(m_row.cells, exportColumns(m_choices.kind), m_choices.form.decimalSign, &faulty);
    if (stored)
        line.stored = *std::move(stored);
    else
        noteFault(line, faulty, u"The cell is not as an export writes it."_s);
}

void ImportLines::noteFault(ImportLine &line, int column, const QString &fault) const
{
    line.column = m_headings.value(column);
    line.fault = fault;
}

} // namespace harrowby::app
