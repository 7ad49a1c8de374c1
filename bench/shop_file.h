// SPDX-License-Identifier: MIT
#pragma once

#include "bench/catalogue.h"

#include <QDateTime>
#include <QString>

struct sqlite3;

namespace harrowby::bench {

/// Noon of the day on which everything happens.
[[nodiscard]] QDateTime benchTime();

/// A database file as the store program makes and opens it: its tables and indexes, its settings of the connection.
/// Operations throw std::runtime_error when they fail.
class ShopFile
{
public:
    /// Opens the file; makes it, with empty tables, when it does not exist.
    explicit ShopFile(const QString &path);
    ~ShopFile();
    ShopFile(const ShopFile &) = delete;
    ShopFile &operator=(const ShopFile &) = delete;

    void fill(const CatalogueSize &size, const QDate &today) const;
    [[nodiscard]] sqlite3 *database() const { return m_database; }

private:
    sqlite3 *m_database = nullptr;
};

} // namespace harrowby::bench
