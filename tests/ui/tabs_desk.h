// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/counter.h"

#include <array>

/// What the work areas show and read, as their tests look at it.
namespace harrowby::test::tabs_desk {

extern const QStringList frames;

[[nodiscard]] QStringList visibleFrames(const Counter &counter);

/// What is visible on a work area that was reached from "Quick Sales".
[[nodiscard]] QStringList framesOf(int tab);

extern const QString allStock;

extern const QString allPurchases;

extern const QString dashboard;

} // namespace harrowby::test::tabs_desk
