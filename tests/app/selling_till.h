// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/forked_process.h"

#include <QByteArray>
#include <QString>

/// A till that sells in a process of its own, beside what is done to its store.
namespace harrowby::app::test {

/// Makes a store with so many items "A0" … of which there are `stockOfEach`, and with the till's user.
void makeSellingStore(const QString &path, int items);
inline constexpr int stockOfEach = 100'000;

/// The real window: sells, and says "SOLD" after each purchase, until there is a file of that name.
int sellUntil(const QString &path, const QString &end);
/// Units of all purchases in the store.
[[nodiscard]] int unitsSold(const QString &path);

/// All that it says until it ends.
[[nodiscard]] QByteArray allSaid(const harrowby::test::ForkedProcess &process);

/// The value of a variable of the environment, or the usual one.
[[nodiscard]] int wanted(const char *name, int usual);

} // namespace harrowby::app::test
