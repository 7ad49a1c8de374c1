// SPDX-License-Identifier: MIT
#include "tests/app/shop_place.h"

#include "app/records/server_engine.h"
#include "app/records/sqlite_records.h"
#include "basic/store_address.h"
#include "tests/app/store_files.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace harrowby::app::test {

namespace {

/// How long another program's lock is waited for, so that no test waits ten seconds for a refusal.
constexpr std::chrono::milliseconds lockTime(300);

std::unique_ptr<ServerStore> opened(const QString &address, const QString &state, std::chrono::milliseconds silence)
{
    const auto engine = serverEngine();
    if (!engine)
        qFatal("%s", qPrintable(engine.error()));
    ServerOptions options;
    options.stateFolder = state;
    options.lock = lockTime;
    options.silence = silence;
    auto store = (*engine)->open(address, options);
    if (!store)
        qFatal("%s", qPrintable(store.error().reason));
    return *std::move(store);
}

} // namespace

ShopPlace::ShopPlace(const QString &file) : m_address(file)
{
    if (!harrowby::test::shopsAreOnAServer())
        return;
    m_shop = std::make_unique<harrowby::test::ServerShop>();
    m_address = QString(m_shop->path()).replace(u"//postgres@"_s, u"//office@"_s);
}

OpenShop::OpenShop(const QString &address, std::chrono::milliseconds silence) : m_address(address)
{
    if (isServer(address)) {
        m_server = opened(address, m_state.path(), silence);
        m_records = m_server->records();
        return;
    }
    auto file = openDatabase(address, OpenMode::Write);
    if (!file)
        qFatal("%s", qPrintable(file.error().reason));
    m_file = *std::move(file);
    m_records = std::make_shared<SqliteRecords>(m_file.get());
}

OpenShop::~OpenShop() = default;

void OpenShop::run(const QString &statement) const
{
    if (!m_file)
        return runAll(m_address, {statement});
    const auto error = runSql(m_file.get(), statement);
    QVERIFY2(!error, qPrintable(statement + u": "_s + (error ? error->reason : QString())));
}

void OpenShop::beginAction() const
{
    if (m_server)
        m_server->beginAction();
}

void OpenShop::refuseWritesTo(const QString &table) const
{
    if (m_file)
        return run(u"PRAGMA query_only = ON"_s);
    runAll(m_address,
           {u"create function no() returns trigger language plpgsql as $$ begin raise exception "
            "'no space left' using errcode = 'disk_full'; end $$"_s,
            u"create trigger no before insert or update or delete on %1 execute function no()"_s.arg(table)});
}

QString OpenShop::read(const QString &select) const
{
    return m_file ? readText(m_file.get(), select) : column(m_address, select).value(0);
}

} // namespace harrowby::app::test
