// SPDX-License-Identifier: MIT
#include "plugins/report/item_tally.h"

#include <QHash>

#include <algorithm>
#include <utility>

namespace harrowby::report {

namespace {

constexpr std::size_t fewestSlots = 64;
constexpr std::size_t mostGathered = 64;

std::uint32_t hashOf(QStringView key)
{
    return static_cast<std::uint32_t>(qHash(key));
}

} // namespace

void ItemTally::add(QStringView key, double quantity, double amount)
{
    const std::uint32_t hash = hashOf(key);
    m_gathered.push_back({hash, m_keys.size(), key.size(), quantity, amount});
    m_keys.append(key);
    if (!m_slots.empty())
        __builtin_prefetch(&m_slots[hash & (m_slots.size() - 1)]);
    if (m_gathered.size() >= mostGathered)
        settle();
}

void ItemTally::settle()
{
    prefetch();
    for (const Line &line : m_gathered) {
        ItemSums &sums = sumsOf(QStringView(m_keys).sliced(line.begin, line.size), line.hash);
        ++sums.purchases;
        sums.quantity += line.quantity;
        sums.amount += line.amount;
    }
    m_gathered.clear();
    m_keys.resize(0); // keeps its memory
}

/// The entry in the first slot that such a key may be in.
const ItemEntry *ItemTally::firstCandidate(std::uint32_t hash) const
{
    const Slot &slot = m_slots[hash & (m_slots.size() - 1)];
    return slot.entry != 0 ? &m_entries[slot.entry - 1] : nullptr;
}

/// Prefetches the entries, and then their keys.
void ItemTally::prefetch() const
{
    if (m_slots.empty())
        return;
    for (const Line &line : m_gathered) {
        if (const ItemEntry *entry = firstCandidate(line.hash))
            __builtin_prefetch(entry);
    }
    for (const Line &line : m_gathered) {
        if (const ItemEntry *entry = firstCandidate(line.hash))
            __builtin_prefetch(entry->key.constData());
    }
}

ItemSums &ItemTally::sumsOf(QStringView key, std::uint32_t hash)
{
    if (2 * m_entries.size() >= m_slots.size())
        grow();
    const std::size_t mask = m_slots.size() - 1;
    std::size_t at = hash & mask;
    for (; m_slots[at].entry != 0; at = (at + 1) & mask) {
        if (m_slots[at].hash != hash)
            continue;
        ItemEntry &entry = m_entries[m_slots[at].entry - 1];
        if (entry.key == key)
            return entry.sums;
    }
    m_entries.push_back({key.toString(), {}});
    m_slots[at] = {hash, static_cast<std::uint32_t>(m_entries.size())};
    return m_entries.back().sums;
}

void ItemTally::grow()
{
    const std::vector<Slot> before = std::exchange(m_slots, {});
    m_slots.resize(std::max(fewestSlots, 2 * before.size()));
    const std::size_t mask = m_slots.size() - 1;
    for (const Slot &slot : before) {
        if (slot.entry == 0)
            continue;
        std::size_t at = slot.hash & mask;
        while (m_slots[at].entry != 0)
            at = (at + 1) & mask;
        m_slots[at] = slot;
    }
}

} // namespace harrowby::report
