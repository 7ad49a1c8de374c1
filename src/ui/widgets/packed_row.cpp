// SPDX-License-Identifier: MIT
#include "ui/widgets/packed_row.h"

#include <algorithm>

namespace harrowby {

namespace {

constexpr int unitBits = 16;
constexpr qsizetype unitMask = 0xffff;

qsizetype headSize(qsizetype columns)
{
    return 1 + 2 * columns;
}

template <typename Character>
char16_t widened(Character c)
{
    return static_cast<unsigned char>(c);
}

char16_t upperAscii(char16_t c)
{
    return c >= u'a' && c <= u'z' ? static_cast<char16_t>(c - (u'a' - u'A')) : c;
}

} // namespace

PackedRow::PackedRow(const QStringList &texts, qsizetype columns)
{
    RowPacker packer(columns);
    for (const QString &text : texts)
        packer.add(QStringView(text));
    *this = packer.packed();
}

QStringView PackedRow::view(QStringView block, qsizetype column)
{
    const qsizetype begin = column == 0 ? headSize(block.front().unicode()) : end(block, column - 1);
    return block.sliced(begin, end(block, column) - begin);
}

QStringList PackedRow::texts() const
{
    QStringList all;
    for (qsizetype i = 0; i < columns(); ++i)
        all.append(text(i));
    return all;
}

qsizetype PackedRow::end(QStringView block, qsizetype column)
{
    const QChar low = block.at(1 + 2 * column);
    const QChar high = block.at(2 + 2 * column);
    return static_cast<qsizetype>(low.unicode()) | (static_cast<qsizetype>(high.unicode()) << unitBits);
}

void RowPacker::begin()
{
    m_texts.clear();
    m_ends.clear();
}

void RowPacker::add(QStringView text)
{
    if (m_ends.size() == m_columns)
        return;
    m_texts.append(text.utf16(), text.size());
    endColumn();
}

void RowPacker::add(QUtf8StringView text)
{
    if (!addAscii(text, [](char16_t c) { return c; }))
        add(QStringView(text.toString()));
}

void RowPacker::addUpper(QUtf8StringView text)
{
    if (!addAscii(text, upperAscii))
        add(QStringView(text.toString().toUpper()));
}

/// False, with nothing added, when the text is more than ASCII.
template <typename Convert>
bool RowPacker::addAscii(QUtf8StringView text, Convert convert)
{
    if (m_ends.size() == m_columns)
        return true;
    const qsizetype begin = m_texts.size();
    m_texts.resize(begin + text.size());
    char16_t *to = m_texts.data() + begin;
    char16_t all = 0;
    for (const auto c : text) {
        all = static_cast<char16_t>(all | widened(c));
        *to++ = convert(widened(c));
    }
    if (all >= 0x80) {
        m_texts.resize(begin);
        return false;
    }
    endColumn();
    return true;
}

void RowPacker::endColumn()
{
    m_ends.append(headSize(m_columns) + m_texts.size());
}

QStringView RowPacker::last() const
{
    const qsizetype before = m_ends.size() < 2 ? 0 : m_ends.at(m_ends.size() - 2) - headSize(m_columns);
    return QStringView(m_texts).sliced(before);
}

PackedRow RowPacker::packed() const
{
    const qsizetype head = headSize(m_columns);
    PackedRow row;
    row.m_block = QString(head + m_texts.size(), Qt::Uninitialized);
    QChar *unit = row.m_block.data();
    const auto put = [&unit](qsizetype value) { *unit++ = QChar(static_cast<char16_t>(value & unitMask)); };
    put(m_columns);
    for (qsizetype column = 0; column < m_columns; ++column) {
        const qsizetype end = column < m_ends.size() ? m_ends.at(column) : head + m_texts.size();
        put(end);
        put(end >> unitBits);
    }
    std::copy(m_texts.begin(), m_texts.end(), unit);
    return row;
}

} // namespace harrowby
