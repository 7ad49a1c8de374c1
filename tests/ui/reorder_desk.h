// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/counter.h"

#include <QString>
#include <QStringList>

/// The page "Reorder Stock" in a small shop, as its tests work at it.
namespace harrowby::test::reorder_desk {

extern const QString milk;

extern const QString selectMilk;

extern const QString nothingToUndo;

[[nodiscard]] bool isRed(const Counter &counter, const char *label);

[[nodiscard]] QString addQuestion(const QString &units, const QString &key);

[[nodiscard]] QString undoQuestion(const QString &units, const QString &key);

[[nodiscard]] QString available(const Counter &counter, const QString &id = QStringLiteral("A1"));

/// Log lines, newest first, without their times.
[[nodiscard]] QStringList logged(const Counter &counter);

void openShop(Counter &counter);

void choose(Counter &counter, const QString &key, const QString &units);

void reorder(Counter &counter, const QString &key, const QString &units, const QString &asked);

} // namespace harrowby::test::reorder_desk
