// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/counter.h"

#include <QString>
#include <QStringList>

/// The page "Custom Sales" in a small shop, as its tests work at it.
namespace harrowby::test::custom_sale_desk {

extern const QString ale;

void openShop(Counter &counter);

/// Item, unit cost, total cost, stock.
[[nodiscard]] QStringList figures(const Counter &counter);

} // namespace harrowby::test::custom_sale_desk
