// SPDX-License-Identifier: MIT
#pragma once

#include <harrowby/db_value.h>

#include <QByteArray>
#include <QStringList>

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

namespace harrowby {

/// The rows of one result, one after the other in a single run of bytes: written once from front to back, then
/// walked once from front to back. A text takes its UTF-8 bytes and one or two more, a small number two.
class RowBuffer
{
public:
    /// Forgets all rows and takes over the names of their columns.
    void reset(const QStringList &columns);

    /// Appends the next value; columns() values make a row.
    void append(const DbValue &value);
    /// Ends the row that the last values belong to.
    void endRow() { ++m_count; }
    /// Releases capacity that was reserved for rows that did not come.
    void squeeze() { m_bytes.squeeze(); }

    [[nodiscard]] qsizetype columns() const { return m_columns.size(); }
    [[nodiscard]] qsizetype count() const { return m_count; }
    [[nodiscard]] qsizetype byteSize() const { return m_bytes.size(); }

    /// Number (0-based) of the row the walk stands on; count() when it is past the last one.
    [[nodiscard]] qsizetype row() const { return m_row; }
    [[nodiscard]] bool atEnd() const { return m_row >= m_count; }
    void moveNext();
    void moveToEnd() { m_row = m_count; }

    /// Position of a column whatever the case of its name, the first one of that name; -1 when there is none.
    [[nodiscard]] qsizetype column(const QString &name);
    /// Value in the current row, which must exist, of a column that exists.
    [[nodiscard]] DbValue value(qsizetype column) const;
    /// UTF-8 of a text in the current row, good as long as the buffer is left alone; empty for every other value.
    [[nodiscard]] std::optional<QByteArrayView> text(qsizetype column) const;

private:
    void putText(const QString &text);
    void putBytes(std::uint64_t type, const QByteArray &bytes);
    void putNumber(std::uint64_t number);

    QStringList m_columns;
    std::vector<std::pair<QString, qsizetype>> m_asked; ///< the names as they were asked for, and their columns
    std::size_t m_nextAsked = 0;                        ///< where to look first
    QByteArray m_bytes;
    qsizetype m_count = 0;
    qsizetype m_row = 0;
    qsizetype m_rowBegin = 0;
};

} // namespace harrowby
