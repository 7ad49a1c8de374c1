// SPDX-License-Identifier: MIT
#include "tests/postgres/connected_till.h"

#include <QTest>

namespace harrowby::test {

using namespace Qt::StringLiterals;

void ConnectedTill::initTestCase()
{
    if (const QString missing = PrivateCluster::missing(); !missing.isEmpty())
        QSKIP(qPrintable(missing));
    m_server = std::make_unique<ServerFixture>();
}

void ConnectedTill::init()
{
    m_server->refill();
    // Those of the function before end on the server a while after they have been left.
    m_server->cluster.await(u"select count(*) from pg_stat_activity where application_name like 'harrowby%'"_s, u"0"_s);
    m_connection = m_server->connect();
}

void ConnectedTill::cleanup()
{
    m_connection.reset();
}

QString ConnectedTill::through(const Proxy &proxy)
{
    return u"host=127.0.0.1 port=%1 user=postgres dbname=shop sslmode=disable"_s.arg(proxy.port());
}

} // namespace harrowby::test
