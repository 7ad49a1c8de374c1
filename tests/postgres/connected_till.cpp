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
