// SPDX-License-Identifier: MIT
#pragma once

#include <QDateTime>
#include <QList>
#include <QString>

namespace harrowby::app {

/// One past sale of the demo shop, in the texts that the till itself writes.
struct DemoPurchase
{
    QString id;
    QString items;
    int lines = 0;
    int cents = 0;
    QString date;
    QString user;
};

/// Four weeks of sales up to `now`, oldest first, a few of them today. The same `now` gives the same sales.
[[nodiscard]] QList<DemoPurchase> demoPurchases(const QDateTime &now);

} // namespace harrowby::app
