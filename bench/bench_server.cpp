// SPDX-License-Identifier: MIT
#include "bench/bench_server.h"

#include "bench/server_filling.h"
#include "bench/shop_file.h"

#include <QDir>
#include <QFile>

#include <stdexcept>

using namespace Qt::StringLiterals;

namespace harrowby::bench {

namespace {

/// The settings that a shop's server has from harrowby-server or from the engine, where a test's have others.
const QStringList &shopsSettings()
{
    static const QStringList settings{u"shared_buffers = 128MB"_s, u"max_wal_size = 1GB"_s};
    return settings;
}

/// As harrowby-server makes it.
void makeTables(test::PrivateCluster &cluster)
{
    const QDir texts(QStringLiteral(HARROWBY_SERVER_SQL));
    for (const QString &name : texts.entryList({u"*.sql"_s}, QDir::Files, QDir::Name)) {
        QFile file(texts.filePath(name));
        if (!file.open(QIODevice::ReadOnly))
            throw std::runtime_error(file.errorString().toStdString());
        cluster.sql(u"set search_path = harrowby, pg_catalog; "_s + QString::fromUtf8(file.readAll()) +
                    u"; reset search_path"_s);
    }
}

} // namespace

BenchServer::BenchServer(const ShopFile &shop) : m_cluster(shopsSettings(), test::PrivateCluster::Durability::Disk)
{
    m_cluster.start();
    makeTables(m_cluster);
    fillServer(m_cluster.conninfo(), shop.database());
    m_cluster.sql(u"CHECKPOINT"_s);
}

void BenchServer::addStandby()
{
    m_standby = m_cluster.standby();
}

std::unique_ptr<ServerShop> BenchServer::shop(const QString &place) const
{
    return std::make_unique<ServerShop>(place, m_cluster.tcpConninfo());
}

std::unique_ptr<ServerShop> BenchServer::shopBehind(const QString &place, std::chrono::microseconds roundTrip)
{
    m_proxy = std::make_unique<test::Proxy>(m_cluster.port());
    m_proxy->setLatency(roundTrip);
    auto shop =
        std::make_unique<ServerShop>(place, u"host=127.0.0.1 port=%1 user=postgres dbname=shop"_s.arg(m_proxy->port()));
    shop->setCounter([proxy = m_proxy.get()] { return proxy->roundTrips(); });
    return shop;
}

} // namespace harrowby::bench
