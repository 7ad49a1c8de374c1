// SPDX-License-Identifier: MIT
#pragma once

#include "bench/catalogue.h"
#include "bench/measured_store.h"

#include <QDateTime>
#include <QString>

namespace harrowby::bench {

/// Noon of the day on which everything happens.
[[nodiscard]] QDateTime benchTime();

/// A database file as the store program makes and opens it: its tables and indexes, its settings of the connection.
/// Operations throw std::runtime_error when they fail.
class ShopFile final : public MeasuredStore
{
public:
    /// Opens the file; makes it, with empty tables, when it does not exist.
    explicit ShopFile(const QString &path);
    ~ShopFile() override;

    void fill(const CatalogueSize &size, const QDate &today) const;

    [[nodiscard]] std::shared_ptr<DbConnection> connect() override;
    [[nodiscard]] std::unique_ptr<app::Records> records() override;
    [[nodiscard]] double rawMs(const RawStatements &statements) override;
    [[nodiscard]] RawStatements search(const QString &text) const override;
    [[nodiscard]] bool isServer() const override { return false; }
    [[nodiscard]] sqlite3 *database() const { return m_database; }

private:
    sqlite3 *m_database = nullptr;
};

} // namespace harrowby::bench
