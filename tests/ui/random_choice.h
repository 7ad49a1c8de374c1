// SPDX-License-Identifier: MIT
#pragma once

#include <QRandomGenerator>
#include <QString>

namespace harrowby::test {

[[nodiscard]] inline bool chance(QRandomGenerator &random, int percent)
{
    return random.bounded(100) < percent;
}

template <typename List>
[[nodiscard]] auto &oneOf(List &list, QRandomGenerator &random)
{
    return list[static_cast<std::size_t>(random.bounded(static_cast<int>(list.size())))];
}

/// Something to type: numbers, quotes, every script, and very much of it.
[[nodiscard]] QString randomText(QRandomGenerator &random);

} // namespace harrowby::test
