// SPDX-License-Identifier: MIT
#include "tests/app/server_desk.h"

#include "app/backup/store_transfer.h"
#include "app/copy/unfit_words.h"
#include "app/records/store_records.h"
#include "tests/app/full_store.h"
#include "tests/doubles/server_shop.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace harrowby::app::test {

ServerDesk::ServerDesk()
{
    cluster.start();
    cluster.sql(
        u"create role harrowby_till; create role harrowby_office; create role harrowby_owner; create role "
        "harrowby_standby; create role till_one login in role harrowby_till; create role office_one login in role "
        "harrowby_office; create role office_chief login in role harrowby_office, harrowby_owner"_s);
    harrowby::test::setUpShop(cluster, u"shop"_s);
    cluster.sql(u"grant execute on function harrowby.empty_store() to harrowby_owner"_s); // it is its own in a shop
}

void ServerDesk::begin()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_database = u"store%1"_s.arg(++m_databases);
    cluster.sql(u"create database %1 template shop"_s.arg(m_database), u"postgres"_s);
}

QString ServerDesk::target(const QString &user) const
{
    return cluster.conninfo(user, m_database);
}

QStringList ServerDesk::everyRow() const
{
    const auto store = openStoreRecords(target(), Access::Read);
    if (!store) // a message would be equal to the same one
        qFatal("%s", qPrintable(store.error()));
    return test::everyRow((*store)->records());
}

QString ServerDesk::countOf(const QString &table)
{
    return cluster.sql(u"select count(*) from harrowby."_s + table, m_database).value(0);
}

void ServerDesk::fill() const
{
    makeFullStore(path(u"full.sqlite"_s));
    const TransferEnd end = copyFileToServer(path(u"full.sqlite"_s), target(), [](const WorkStep &) { return true; });
    QVERIFY2(end.outcome == TransferEnd::Outcome::Done, qPrintable(end.problem + unfitWords(end.unfit, 9)));
}

} // namespace harrowby::app::test
