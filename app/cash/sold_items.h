// SPDX-License-Identifier: MIT
#pragma once

#include <harrowby/counter.h>

#include <QString>

#include <vector>

namespace harrowby::app {

/// What a purchase of these lines will store as its items; a figure may be written in another way.
[[nodiscard]] QString soldItems(const std::vector<CounterLine> &lines);

/// The same for two texts of items that say the same in capitals and without commas.
[[nodiscard]] QString itemsKey(const QString &items);

} // namespace harrowby::app
