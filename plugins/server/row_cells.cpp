// SPDX-License-Identifier: MIT
#include "plugins/server/row_cells.h"

#include "postgres/schema.h"
#include "postgres/storable.h"

namespace harrowby::server {

namespace {

using namespace Qt::StringLiterals;
using postgres::readValue;

template <typename Rows>
int columnsOf(const Rows &rows, const QString &statement)
{
    const int columns = rows.columnCount();
    const bool isAll = statement.startsWith("select * "_L1, Qt::CaseInsensitive);
    return isAll && columns > 0 && rows.columnName(columns - 1) == postgres::identityColumn ? columns - 1 : columns;
}

/// Of one of the rows that have come all at once.
class ResultCells final : public app::RecordCells
{
public:
    ResultCells(const PgResult &result, int columns) : m_result(result), m_columns(columns) {}
    void setRow(int row) { m_row = row; }
    [[nodiscard]] int count() const override { return m_columns; }
    [[nodiscard]] app::RecordValue value(int column) const override
    {
        return m_result.isNull(m_row, column) ? app::RecordValue()
                                              : readValue(m_result.text(m_row, column), m_result.columnType(column));
    }
    [[nodiscard]] std::optional<QByteArrayView> utf8(int column) const override
    {
        if (m_result.isNull(m_row, column) || !postgres::isText(m_result.columnType(column)))
            return {};
        return m_result.text(m_row, column);
    }

private:
    const PgResult &m_result;
    int m_columns;
    int m_row = 0;
};

} // namespace

WalkedCells::WalkedCells(const PgRows &rows, const QString &statement) :
    m_rows(rows), m_columns(columnsOf(rows, statement))
{
}

app::RecordValue WalkedCells::value(int column) const
{
    return m_rows.isNull(column) ? app::RecordValue() : readValue(m_rows.text(column), m_rows.columnType(column));
}

std::optional<QByteArrayView> WalkedCells::utf8(int column) const
{
    if (m_rows.isNull(column) || !postgres::isText(m_rows.columnType(column)))
        return {};
    return m_rows.text(column);
}

QList<app::RecordRow> rowsOf(const PgResult &result, const QString &statement)
{
    ResultCells cells(result, columnsOf(result, statement));
    QList<app::RecordRow> rows;
    rows.reserve(result.rowCount());
    for (int i = 0; i < result.rowCount(); ++i) {
        cells.setRow(i);
        app::RecordRow row;
        row.reserve(cells.count());
        for (int column = 0; column < cells.count(); ++column)
            row << cells.value(column);
        rows << row;
    }
    return rows;
}

int takeRows(const PgResult &result, const QString &statement, const app::Records::RowTaker &take, bool &goesOn)
{
    ResultCells cells(result, columnsOf(result, statement));
    for (int i = 0; goesOn && i < result.rowCount(); ++i) {
        cells.setRow(i);
        goesOn = take(cells);
    }
    return result.rowCount();
}

} // namespace harrowby::server
