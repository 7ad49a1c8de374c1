// SPDX-License-Identifier: MIT
#pragma once

#include "bench/server_shop.h"
#include "tests/doubles/private_cluster.h"
#include "tests/doubles/proxy.h"

#include <chrono>
#include <memory>

namespace harrowby::bench {

class ShopFile;

/// A private server of this machine with the shop of a file in it, which syncs to the disk as in a shop. What fails
/// ends the program with a message, or throws std::runtime_error.
class BenchServer
{
public:
    explicit BenchServer(const ShopFile &shop);

    /// From now on each write waits for a standby.
    void addStandby();

    [[nodiscard]] std::unique_ptr<ServerShop> shop(const QString &place) const;
    [[nodiscard]] QString conninfo() const { return m_cluster.tcpConninfo(); }
    /// As far away as this, with its round trips counted.
    [[nodiscard]] std::unique_ptr<ServerShop> shopBehind(const QString &place, std::chrono::microseconds roundTrip);

private:
    test::PrivateCluster m_cluster;
    std::unique_ptr<test::PrivateCluster> m_standby;
    std::unique_ptr<test::Proxy> m_proxy;
};

} // namespace harrowby::bench
