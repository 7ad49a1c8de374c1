// SPDX-License-Identifier: MIT
#pragma once

#include "tests/doubles/recording_connection.h"

#include <QDate>
#include <QStringList>

#include <memory>

struct sqlite3;

namespace harrowby::report::test {

/// A shop in memory, with the tables and indexes of a store's file.
class Shop
{
public:
    Shop();
    ~Shop();
    Shop(const Shop &) = delete;
    Shop &operator=(const Shop &) = delete;

    /// Runs statements; false when one fails.
    bool run(const QString &statements) const;
    /// One purchase; `date` as it is stored.
    void sell(const QString &date, const QString &user, double cost, const QString &items = {}) const;
    /// That many purchases from the first day on, `perDay` on each, of 1.50 each, one line each of 50 items, by the
    /// sellers S0 to S4.
    void sellMany(int count, int perDay, const QDate &firstDay) const;

    [[nodiscard]] sqlite3 *handle() const { return m_database; }
    [[nodiscard]] const std::shared_ptr<harrowby::test::RecordingConnection> &connection() const
    {
        return m_connection;
    }

private:
    sqlite3 *m_database = nullptr;
    std::shared_ptr<harrowby::test::RecordingConnection> m_connection;
};

} // namespace harrowby::report::test
