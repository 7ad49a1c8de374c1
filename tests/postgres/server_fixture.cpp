// SPDX-License-Identifier: MIT
#include "tests/postgres/server_fixture.h"

#include "tests/postgres/server_store.h"

namespace harrowby::test {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

ServerFixture::ServerFixture(const QStringList &settings) : cluster(settings)
{
    cluster.start();
    for (const QString &text : schemaFiles())
        cluster.sql(text);
}

void ServerFixture::refill(int items)
{
    failures.clear();
    cluster.sql(u"truncate harrowby.StockList, harrowby.PurchaseCart, harrowby.SysUsage, harrowby.InventoryCategory; "
                "insert into harrowby.StockList (StockID, StockName, StockCategory, StockCost, StockReorderLevel, "
                "StockAvailable, StockUse) select i::text, 'ITEM ' || lpad(i::text, 6, '0'), 'DRINKS', i + 0.5, 2, 10, "
                "'Enabled' from generate_series(1, %1) i"_s.arg(items));
}

PostgresOptions ServerFixture::options()
{
    PostgresOptions options;
    options.stateFolder = m_folder.filePath(QString::number(++m_folders));
    options.location = u"/opt/shop"_s;
    options.connecting = 2'000ms;
    options.silence = 2'000ms;
    options.lock = 400ms;
    options.rest = 20'000ms;
    return options;
}

std::shared_ptr<PostgresConnection> ServerFixture::connect(const QString &conninfo)
{
    auto connection = std::make_shared<PostgresConnection>(conninfo, options());
    connection->setFailureHandler([this](const DbFailure &failure) { failures.push_back(failure); });
    return connection;
}

QString ServerFixture::stockOf(const QString &id)
{
    return cluster.sql(u"select StockAvailable from harrowby.StockList where StockID = '%1'"_s.arg(id)).join(u',');
}

} // namespace harrowby::test
