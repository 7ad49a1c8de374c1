// SPDX-License-Identifier: MIT
#pragma once

#include "ui/row_loop.h"
#include "ui/stock/stock_row_maker.h"

#include <QByteArray>

#include <array>

namespace harrowby {

class DbRecordset;

/// Reads rows of the existing-stock list from the rows of a walk.
class StockRowReader
{
public:
    /// `stock` must outlive the reader. `columns` is how many the list has.
    StockRowReader(DbRecordset &stock, qsizetype columns);

    /// Begins the current row with its ID and name; false when it has no ID, and the list gets no row.
    [[nodiscard]] bool readId();
    /// As the list shows it.
    [[nodiscard]] QStringView id() const { return m_maker.id(); }
    /// The row that readId() has begun; what it lacks is empty.
    [[nodiscard]] PackedRow readRow();

    /// Whether there is a name; without such a column none is offered.
    [[nodiscard]] bool hasName() const { return m_hasName; }
    /// The name as it is stored; good until the recordset moves or closes its walk.
    [[nodiscard]] QUtf8StringView name() const { return m_name[0]; }
    /// Whether the row that was read last is to be reordered.
    [[nodiscard]] bool isLow() const { return m_low; }

private:
    [[nodiscard]] QUtf8StringView text(const QString &column, QByteArray &buffer) const;
    [[nodiscard]] DbValue value(const QString &column) const;

    DbRecordset &m_stock;
    StockRowMaker m_maker;
    std::array<QByteArray, 3> m_buffers;
    NeededTexts<1> m_id;
    NeededTexts<1> m_name;
    bool m_hasName = false;
    bool m_low = false;
};

} // namespace harrowby
