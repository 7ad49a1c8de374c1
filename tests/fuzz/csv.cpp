// SPDX-License-Identifier: MIT
// A CSV file of anybody's: it gets a form, is read in it and in every other one, and what was read is written and read
// again. The last line is a row as an export has it.
#include "tests/fuzz/fuzz.h"

#include "app/csv/csv_guess.h"
#include "app/csv/csv_reader.h"
#include "app/csv/figures.h"
#include "app/csv/stored_cell.h"
#include "basic/csv_cell.h"

using namespace harrowby;
using namespace harrowby::app;
using namespace harrowby::fuzz;

namespace {

QList<QStringList> cellsOf(const QByteArray &bytes, const CsvForm &form)
{
    QList<QStringList> cells;
    CsvReader reader(bytes, form);
    qint64 last = 0;
    for (CsvRow row; reader.next(row);) {
        demand(!row.cells.isEmpty() && row.cells.size() <= CsvReader::mostCells, "a row has cells");
        demand(row.line > last && row.lastLine >= row.line, "lines go on");
        demand(!row.fault || (row.fault->line >= row.line && row.fault->line <= row.lastLine), "a fault is in its row");
        last = row.lastLine;
        cells << row.cells;
    }
    demand(reader.percent() == 100, "everything is read");
    return cells;
}

void readsBack(const QList<QStringList> &cells, CsvForm form)
{
    form.encoding = CsvEncoding::Utf8;
    CsvWriter writer(form);
    for (const QStringList &row : cells)
        writer.row(row);
    QList<QStringList> again = cellsOf(writer.take(), form);
    for (QStringList &row : again) {
        for (QString &cell : row)
            cell = unguardedText(cell, true);
    }
    demand(again == cells, "what is written reads back");
}

void checkFigure(const QString &cell)
{
    for (const QChar sign : {u'.', u','}) {
        const auto value = readFigure(cell, sign);
        demand(!value || readFigure(writeFigure(*value, sign), sign) == value, "a figure reads back");
    }
    demand(decimalHint(cell) != DecimalHint::Either || readFigure(cell, u'.') != readFigure(cell, u','),
           "what is open has two values");
}

/// Any bytes stand in a store; their row of an export says them exactly.
void checkStored(const QByteArray &bytes)
{
    const QList<StoredColumn> columns = {{QStringLiteral("A"), ColumnKind::Text},
                                         {QStringLiteral("B"), ColumnKind::Figure}};
    CsvForm form;
    form.separator = u';';
    form.decimalSign = u',';
    CsvWriter out(form);
    StoredRowWriter row(out);
    row.text(columns.at(0), bytes);
    row.value(columns.at(1), bytes);
    row.end();
    const QList<QStringList> cells = cellsOf(out.take(), form);
    demand(cells.size() == 1, "a row is one");
    const auto values = readStoredRow(cells.constFirst(), columns, form.decimalSign);
    demand(values.has_value(), "a row of an export is understood");
    const auto *text = std::get_if<QString>(&values->at(0).value);
    demand((text != nullptr ? text->toUtf8() : std::get<QByteArray>(values->at(0).value)) == bytes,
           "a text comes back");
    demand(std::get<QByteArray>(values->at(1).value) == bytes, "bytes come back");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray bytes = asBytes(data, size);
    const CsvGuess guess = guessForm(bytes);
    demand(guess.decimal.sign.has_value() != (guess.decimal.line > 0), "what is open has an example");
    for (const auto encoding :
         {guess.form.encoding, CsvEncoding::Utf8, CsvEncoding::Utf16BigEndian, CsvEncoding::Windows1252}) {
        CsvForm form = guess.form;
        form.encoding = encoding;
        const QList<QStringList> cells = cellsOf(bytes, form);
        readsBack(cells, form);
        for (const QStringList &row : cells) {
            for (const QString &cell : row)
                checkFigure(cell);
            static_cast<void>(readStoredRow(row, itemColumns(), form.decimalSign));
        }
    }
    checkStored(bytes.sliced(bytes.lastIndexOf('\n') + 1));
    return 0;
}
