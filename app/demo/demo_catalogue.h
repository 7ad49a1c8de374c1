// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QString>

namespace harrowby::app {

struct DemoItem
{
    QString id;
    QString name;     ///< in upper case, as the cart names it, so that it can be sold
    QString category; ///< one of demoCategories()
    int cents = 0;
    int reorderLevel = 0;
    int available = 0;
    bool enabled = true;
};

[[nodiscard]] const QStringList &demoCategories();
[[nodiscard]] QList<DemoItem> demoItems();

} // namespace harrowby::app
