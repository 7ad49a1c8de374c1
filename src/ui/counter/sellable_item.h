// SPDX-License-Identifier: MIT
#pragma once

#include "basic/result.h"

#include <harrowby/counter.h>

#include <QString>

#include <memory>

namespace harrowby {

class DbConnection;

/// An item that a quick-sale button would sell, stock permitting.
struct SellableItem
{
    QString key;
    float available = 0;
    float unitCost = 0;
};

/// The item that has exactly this ID, by one statement. Of several the first that can be sold. Otherwise Unknown,
/// Disabled, NotInCapitals or Failed.
[[nodiscard]] Result<SellableItem, CounterAnswer> sellableItem(const QString &stockId,
                                                               const std::shared_ptr<DbConnection> &connection);

} // namespace harrowby
