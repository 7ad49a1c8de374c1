// SPDX-License-Identifier: MIT
#include "ui/widgets/packed_row.h"

#include <algorithm>
#include <type_traits>

namespace harrowby {

namespace {

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

QStringView PackedRow::view(qsizetype column) const
{
    const qsizetype begin = column == 0 ? 0 : m_ends[static_cast<std::size_t>(column - 1)];
    return QStringView(m_texts).sliced(begin, m_ends[static_cast<std::size_t>(column)] - begin);
}

QStringList PackedRow::texts() const
{
    QStringList all;
    for (qsizetype i = 0; i < columns(); ++i)
        all.append(text(i));
    return all;
}

RowPacker::RowPacker(qsizetype columns) : m_columns(columns)
{
    Q_ASSERT(columns <= PackedRow::mostColumns);
}

void RowPacker::begin()
{
    m_texts.clear();
    m_ends.clear();
}

void RowPacker::add(QAnyStringView text)
{
    text.visit([this](auto view) {
        if constexpr (std::is_same_v<decltype(view), QStringView>)
            addUtf16(view);
        else if (!addAscii(view, [](char16_t c) { return c; }))
            addUtf16(view.toString());
    });
}

void RowPacker::addUpper(QAnyStringView text)
{
    text.visit([this](auto view) {
        bool isAdded = false;
        if constexpr (!std::is_same_v<decltype(view), QStringView>)
            isAdded = addAscii(view, upperAscii);
        if (!isAdded)
            addUtf16(view.toString().toUpper());
    });
}

void RowPacker::addUtf16(QStringView text)
{
    if (m_ends.size() == m_columns)
        return;
    m_texts.append(text.utf16(), text.size());
    endColumn();
}

/// False, with nothing added, when the text is more than ASCII.
template <typename View, typename Convert>
bool RowPacker::addAscii(View text, Convert convert)
{
    if (m_ends.size() == m_columns)
        return true;
    const qsizetype begin = m_texts.size();
    m_texts.resize(begin + text.size());
    char16_t *to = m_texts.data() + begin;
    char16_t all = 0;
    for (const auto *from = text.data(); from != text.data() + text.size(); ++from) {
        const char16_t c = static_cast<unsigned char>(*from);
        all = static_cast<char16_t>(all | c);
        *to++ = convert(c);
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
    m_ends.append(static_cast<std::uint32_t>(m_texts.size()));
}

QStringView RowPacker::last() const
{
    return QStringView(m_texts).sliced(m_ends.size() < 2 ? 0 : m_ends.at(m_ends.size() - 2));
}

PackedRow RowPacker::packed() const
{
    PackedRow row;
    row.m_texts = QStringView(m_texts).toString();
    row.m_columns = static_cast<std::uint8_t>(m_columns);
    row.m_ends.fill(static_cast<std::uint32_t>(m_texts.size())); // a column that was not added is empty
    std::copy(m_ends.begin(), m_ends.end(), row.m_ends.begin());
    return row;
}

} // namespace harrowby
