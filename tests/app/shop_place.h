// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/records.h"
#include "engine/database.h"
#include "tests/doubles/server_shop.h"

#include <QString>
#include <QTemporaryDir>

#include <chrono>
#include <memory>

namespace harrowby::app {
class ServerStore;
}

namespace harrowby::app::test {

/// Where a test's store is: the file of that name or, where shops are on a server, a database with the tables and
/// nothing in them, by the address that an office has.
class ShopPlace
{
public:
    explicit ShopPlace(const QString &file);
    [[nodiscard]] const QString &address() const { return m_address; }

private:
    std::unique_ptr<harrowby::test::ServerShop> m_shop;
    QString m_address;
};

/// A store that is open, as an office has it. What cannot be opened ends the test program.
class OpenShop
{
public:
    /// `silence`: see ServerOptions.
    explicit OpenShop(const QString &address, std::chrono::milliseconds silence = std::chrono::seconds(5));
    ~OpenShop();
    OpenShop(const OpenShop &) = delete;
    OpenShop &operator=(const OpenShop &) = delete;

    /// The user's next action, where no event loop blocks in between.
    void beginAction() const;
    /// Null on a server.
    [[nodiscard]] sqlite3 *file() const { return m_file.get(); }
    [[nodiscard]] const std::shared_ptr<Records> &records() const { return m_records; }
    /// Runs a statement of the test; fails it when that fails.
    void run(const QString &statement) const;
    /// From now on this connection cannot change that table.
    void refuseWritesTo(const QString &table) const;
    /// First column of the first row.
    [[nodiscard]] QString read(const QString &select) const;

private:
    QString m_address;
    QTemporaryDir m_state; ///< what a machine keeps of its server
    SqliteDatabase m_file;
    std::unique_ptr<ServerStore> m_server;
    std::shared_ptr<Records> m_records;
};

} // namespace harrowby::app::test
