// SPDX-License-Identifier: MIT
#pragma once

#include "tests/doubles/database.h"

#include <harrowby/counter.h>

#include <QMap>
#include <QObject>
#include <QString>
#include <QStringList>

namespace harrowby::test {

/// What has been purchased at the counter, by what it tells, against the payments in the file.
class PaidBook : public QObject
{
    Q_OBJECT

public:
    PaidBook();

    /// Once everything has been written. Each purchase has payments that come to its sum, and nothing else is paid.
    [[nodiscard]] QStringList problems(const Database &file) const;
    [[nodiscard]] int purchases() const { return m_purchases; }

private:
    void note(const CounterPurchase &purchase);
    void forget(const QString &id);

    QMap<QString, qint64> m_sums; ///< in cents, by ID; those of one second share it
    int m_purchases = 0;
};

} // namespace harrowby::test
