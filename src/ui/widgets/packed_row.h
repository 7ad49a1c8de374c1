// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>
#include <QUtf8StringView>
#include <QVarLengthArray>

namespace harrowby {

/// The texts of one list row in a single block: a list of 100,000 rows takes a third of the memory, and fills in half
/// the time, of as many string lists.
class PackedRow
{
public:
    /// `columns` texts; missing ones are empty.
    PackedRow(const QStringList &texts, qsizetype columns);

    [[nodiscard]] QStringView view(qsizetype column) const { return view(m_block, column); }
    [[nodiscard]] QString text(qsizetype column) const { return view(column).toString(); }
    [[nodiscard]] qsizetype columns() const { return m_block.front().unicode(); }
    [[nodiscard]] QStringList texts() const;

private:
    friend class RowPacker;
    PackedRow() = default;
    [[nodiscard]] static QStringView view(QStringView block, qsizetype column);
    [[nodiscard]] static qsizetype end(QStringView block, qsizetype column);

    /// How many texts there are, where each ends (two units, the low one first), and the texts themselves.
    QString m_block;
};

/// Packs one row after the other, text by text, without a text object for any of them.
class RowPacker
{
public:
    explicit RowPacker(qsizetype columns) : m_columns(columns) {}

    /// Begins a row and drops what was begun before.
    void begin();
    /// The next column's text. Texts beyond the last column are dropped.
    void add(QStringView text);
    void add(QUtf8StringView text);
    void addUpper(QUtf8StringView text);
    /// The text that was added last.
    [[nodiscard]] QStringView last() const;
    /// The row; columns that were not added are empty.
    [[nodiscard]] PackedRow packed() const;

private:
    template <typename Convert>
    bool addAscii(QUtf8StringView text, Convert convert);
    void endColumn();

    qsizetype m_columns;
    QVarLengthArray<char16_t, 256> m_texts;
    QVarLengthArray<qsizetype, 16> m_ends;
};

} // namespace harrowby
