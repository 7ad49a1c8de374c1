// SPDX-License-Identifier: MIT
#pragma once

#include "ui/widgets/packed_row.h"

#include <harrowby/db_value.h>

#include <QByteArray>

#include <cstdint>

namespace harrowby {

class DbRecordset;

/// Makes rows of the existing-stock list straight from the rows of a long walk, with next to no text object in
/// between: what is left of the time goes to the engine.
class StockRowReader
{
public:
    /// `stock` must outlive the reader. `columns` is how many the list has.
    StockRowReader(DbRecordset &stock, qsizetype columns);

    /// Begins the current row with its ID, which it returns as the list shows it.
    QStringView readId();
    /// Reads the rest of the row.
    void readRest();

    /// As the list shows it: ID and name upper-cased, the cost as money.
    [[nodiscard]] PackedRow row() const { return m_packer.packed(); }
    /// The name as it is stored; good until the recordset moves or closes its walk.
    [[nodiscard]] QUtf8StringView name() const { return m_name; }
    [[nodiscard]] bool isLow() const { return m_low; }

private:
    [[nodiscard]] QUtf8StringView text(const QString &column);
    [[nodiscard]] DbValue value(const QString &column) const;
    void addFigure(const DbValue &figure);

    DbRecordset &m_stock;
    RowPacker m_packer;
    QByteArray m_buffer;
    QByteArray m_nameBuffer;
    QUtf8StringView m_name;
    bool m_low = false;
};

} // namespace harrowby
