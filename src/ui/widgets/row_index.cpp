// SPDX-License-Identifier: MIT
#include "ui/widgets/row_index.h"

#include "basic/case_folding.h"

#include <algorithm>
#include <utility>

namespace harrowby {

namespace {

constexpr std::size_t fewestPlaces = 64;

} // namespace

void RowIndex::append(QStringView text)
{
    makeRoom();
    const int row = count();
    const std::uint32_t hash = hashOf(text);
    int &last = m_lasts[placeOf(hash)];
    m_hashes.push_back(hash);
    m_next.push_back(row);
    if (last == none)
        ++m_taken;
    else
        std::swap(m_next.back(), m_next[static_cast<std::size_t>(last)]);
    last = row;
}

void RowIndex::clear()
{
    *this = RowIndex();
}

void RowIndex::expect(QStringView text) const
{
#if defined(__GNUC__)
    if (!m_lasts.empty())
        __builtin_prefetch(&m_lasts[hashOf(text) & (m_lasts.size() - 1)]);
#else
    static_cast<void>(text);
#endif
}

std::uint32_t RowIndex::hashOf(QStringView text)
{
    return static_cast<std::uint32_t>(caseFoldedHash(text));
}

int RowIndex::lastOf(std::uint32_t hash) const
{
    return m_lasts.empty() ? none : m_lasts[placeOf(hash)];
}

/// Where the last row of that hash stands, or would.
std::size_t RowIndex::placeOf(std::uint32_t hash) const
{
    const std::size_t mask = m_lasts.size() - 1;
    std::size_t place = hash & mask;
    while (m_lasts[place] != none && m_hashes[static_cast<std::size_t>(m_lasts[place])] != hash)
        place = (place + 1) & mask;
    return place;
}

void RowIndex::makeRoom()
{
    if (2 * (m_taken + 1) <= m_lasts.size())
        return;
    const std::vector<int> fewer = std::exchange(m_lasts, {});
    m_lasts.resize(std::max(fewestPlaces, 2 * fewer.size()), none);
    for (const int last : fewer) {
        if (last != none)
            m_lasts[placeOf(m_hashes[static_cast<std::size_t>(last)])] = last;
    }
}

} // namespace harrowby
