// SPDX-License-Identifier: MIT
#include "tests/app/server_desk.h"

#include "app/backup/store_transfer.h"
#include "app/copy/unfit_words.h"
#include "app/records/store_records.h"
#include "tests/app/full_store.h"
#include "tests/doubles/server_shop.h"

#include <QFile>
#include <QTest>

using namespace Qt::StringLiterals;

namespace harrowby::app::test {

namespace {

QString textOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

} // namespace

ServerDesk::ServerDesk()
{
    cluster.start();
    cluster.sql(
        u"create role harrowby_till; create role harrowby_office; create role harrowby_owner; create role "
        "harrowby_standby; create role till_one login in role harrowby_till; create role office_one login in role "
        "harrowby_office; create role office_chief login in role harrowby_office, harrowby_owner"_s);
    harrowby::test::setUpShop(cluster, u"shop"_s);
    cluster.sql(u"set search_path = harrowby, pg_catalog; "_s + textOf(QStringLiteral(HARROWBY_OWN_TABLES)));
    QString rights = textOf(QStringLiteral(HARROWBY_RIGHTS));
    cluster.sql(u"reset search_path; "_s + rights.replace(u"database harrowby "_s, u"database shop "_s));
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
    return store ? test::everyRow((*store)->records()) : QStringList{store.error()};
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
