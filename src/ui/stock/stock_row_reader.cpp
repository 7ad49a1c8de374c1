// SPDX-License-Identifier: MIT
#include "ui/stock/stock_row_reader.h"

#include "basic/reorder_level.h"
#include "store/recordset.h"

using namespace Qt::StringLiterals;

namespace harrowby {

StockRowReader::StockRowReader(DbRecordset &stock, qsizetype columns) :
    m_stock(stock), m_maker(columns), m_id(stock, u"StockID"_s), m_name(stock, u"StockName"_s)
{
}

bool StockRowReader::readId()
{
    m_hasName = m_name.read();
    if (!m_id.read())
        return false;
    m_maker.begin(m_id[0]);
    return true;
}

PackedRow StockRowReader::readRow()
{
    const StockRowParts parts = {m_hasName ? m_name[0] : QUtf8StringView(),
                                 text(u"StockCategory"_s, m_buffers[0]),
                                 value(u"StockCost"_s),
                                 value(u"StockReorderLevel"_s),
                                 value(u"StockAvailable"_s),
                                 text(u"StockUse"_s, m_buffers[1]),
                                 text(u"StockLastUpdated"_s, m_buffers[2])};
    m_low = needsReorder(parts.reorderLevel, parts.available);
    return m_maker.finish(parts);
}

QUtf8StringView StockRowReader::text(const QString &column, QByteArray &buffer) const
{
    return m_stock.Field(column).utf8(buffer).value_or(QUtf8StringView());
}

DbValue StockRowReader::value(const QString &column) const
{
    return m_stock.Field(column).value().value_or(DbValue());
}

} // namespace harrowby
