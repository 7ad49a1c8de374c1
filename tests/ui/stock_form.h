// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/counter.h"

#include <QStringList>

/// The page "Add/Edit Stock", as its tests fill it in.
namespace harrowby::test {

/// The entry fields: ID, category, name, cost, reorder level, available stock, use.
extern const QStringList fields;
/// A new item for them, with an automatic ID.
extern const QStringList bun;

void openStock(Counter &counter);
void enter(const Counter &counter, const QStringList &texts);
void save(const Counter &counter);
[[nodiscard]] QStringList storedIds(const Counter &counter);
/// What the list shows, its first columns.
[[nodiscard]] QStringList listed(const Counter &counter);

} // namespace harrowby::test
