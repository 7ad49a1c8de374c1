// SPDX-License-Identifier: MIT
#pragma once

#include "tests/doubles/private_cluster.h"

#include <harrowby/postgres_connection.h>

#include <QTemporaryDir>

#include <memory>
#include <vector>

namespace harrowby::test {

/// A private server with a shop of three items ("1" to "3", ten of each), and how a till connects to it: with short
/// times and a folder of its own.
class ServerFixture
{
public:
    /// `settings` are further lines of postgresql.conf.
    explicit ServerFixture(const QStringList &settings = {});

    /// As at first.
    void refill(int items = 3);
    [[nodiscard]] PostgresOptions options();
    [[nodiscard]] std::shared_ptr<PostgresConnection> connect(const QString &conninfo);
    [[nodiscard]] std::shared_ptr<PostgresConnection> connect() { return connect(cluster.conninfo()); }
    [[nodiscard]] QString stockOf(const QString &id);

    PrivateCluster cluster;
    std::vector<DbFailure> failures; ///< of the connections that connect() has made

private:
    QTemporaryDir m_folder;
    int m_folders = 0;
};

} // namespace harrowby::test
