// SPDX-License-Identifier: MIT
#pragma once

#include "app/hold/held_carts.h"
#include "tables/table.h"

#include <QString>
#include <QStringList>

#include <vector>

/// What a person is told of held carts.
namespace harrowby::app {

/// "3 lines, 12.50"
[[nodiscard]] QString cartWords(std::size_t lines, double total);
/// The carts that are held; the first column is the word.
[[nodiscard]] tables::Table heldTable(const QList<HeldCart> &carts);
/// What of a recalled cart is not as it was; one row a line.
[[nodiscard]] tables::Table misfitTable(const std::vector<CounterMisfit> &misfits);

/// The same in a line each.
[[nodiscard]] QStringList misfitLines(const std::vector<CounterMisfit> &misfits);

} // namespace harrowby::app
