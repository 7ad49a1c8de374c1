// SPDX-License-Identifier: MIT
#pragma once

#include "tests/doubles/proxy.h"
#include "tests/postgres/server_fixture.h"

#include <QObject>
#include <QString>

#include <memory>

namespace harrowby::test {

/// A till's connection to a private server, anew for each test function, its shop with it.
class ConnectedTill : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

protected:
    /// For a connection on the way of this network.
    [[nodiscard]] static QString through(const Proxy &proxy);

    std::unique_ptr<ServerFixture> m_server;
    std::shared_ptr<PostgresConnection> m_connection;
};

} // namespace harrowby::test
