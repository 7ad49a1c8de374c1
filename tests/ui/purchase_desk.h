// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/counter.h"

#include <QString>
#include <QStringList>

/// A shop with purchases to take back, as the tests of that work at it.
namespace harrowby::test::purchase_desk {

inline constexpr QLatin1StringView firstId("HV18030514070907");

void openShop(Counter &counter);

void addPurchase(const Counter &counter, const QString &id, const QString &items, const QString &count);

[[nodiscard]] QStringList stock(const Counter &counter);

extern const QStringList untouched;

/// Sells a safe and two teas, as A1 stands on the second button and A2 on the third.
void commit(Counter &counter);

extern const QStringList committedCart;

void undo(Counter &counter, const QString &id = firstId);

void expectDeleteQuestion(Counter &counter, const QString &id, Answer answer);

void deletePurchase(Counter &counter, const QString &id);

void expectNothingToUndo(Counter &counter);

[[nodiscard]] QStringList purchases(const Counter &counter);

} // namespace harrowby::test::purchase_desk
