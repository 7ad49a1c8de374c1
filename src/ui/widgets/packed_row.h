// SPDX-License-Identifier: MIT
#pragma once

#include <QAnyStringView>
#include <QString>
#include <QStringList>
#include <QStringView>
#include <QVarLengthArray>

#include <array>
#include <cstdint>

namespace harrowby {

/// The texts of one list row in a single block: a list of 100,000 rows takes a third of the memory, and fills in half
/// the time, of as many string lists.
class PackedRow
{
public:
    /// As many columns as a list of the window has at most.
    static constexpr qsizetype mostColumns = 8;

    /// `columns` texts; missing ones are empty.
    PackedRow(const QStringList &texts, qsizetype columns);

    [[nodiscard]] QStringView view(qsizetype column) const;
    [[nodiscard]] QString text(qsizetype column) const { return view(column).toString(); }
    [[nodiscard]] qsizetype columns() const { return m_columns; }
    [[nodiscard]] QStringList texts() const;

private:
    friend class RowPacker;
    PackedRow() = default;

    QString m_texts;                                 ///< one after the other
    std::array<std::uint32_t, mostColumns> m_ends{}; ///< where each text ends
    std::uint8_t m_columns = 0;
};

/// Packs one row after the other, text by text, without a text object for any of them.
class RowPacker
{
public:
    /// Of at most PackedRow::mostColumns columns.
    explicit RowPacker(qsizetype columns);

    /// Begins a row and drops what was begun before.
    void begin();
    /// The next column's text. Texts beyond the last column are dropped.
    void add(QAnyStringView text);
    void addUpper(QAnyStringView text);
    /// The text that was added last.
    [[nodiscard]] QStringView last() const;
    /// The row; columns that were not added are empty.
    [[nodiscard]] PackedRow packed() const;

private:
    void addUtf16(QStringView text);
    template <typename View, typename Convert>
    bool addAscii(View text, Convert convert);
    void endColumn();

    qsizetype m_columns;
    QVarLengthArray<char16_t, 256> m_texts;
    QVarLengthArray<std::uint32_t, PackedRow::mostColumns> m_ends;
};

} // namespace harrowby
