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
    const QDir schema(QStringLiteral(HARROWBY_SCHEMA_FOLDER));
    for (const QString &name : schema.entryList({u"*.sql"_s}, QDir::Files, QDir::Name)) {
        QFile file(schema.filePath(name));
        if (!file.open(QIODevice::ReadOnly))
            throw std::runtime_error(file.errorString().toStdString());
        cluster.sql(QString::fromUtf8(file.readAll()));
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
