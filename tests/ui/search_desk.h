// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/counter.h"

#include <QString>
#include <QStringList>

/// The search in a small shop, as its tests work at it.
namespace harrowby::test::search_desk {

extern const QString prompt;

extern const QString title;

/// The pattern's asterisks are no wildcards, so only what begins and ends with one is found.
void openShop(Counter &counter, int tab = WorkArea::CustomSales);

void search(Counter &counter, const QString &text);

[[nodiscard]] QString statement(const QString &upper);

[[nodiscard]] bool isOpen(const Counter &counter);

} // namespace harrowby::test::search_desk
