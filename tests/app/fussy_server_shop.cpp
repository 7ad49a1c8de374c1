// SPDX-License-Identifier: MIT
#include "plugins/server/postgres_records.h"
#include "plugins/server/postgres_store.h"
#include "tests/app/fussy_shop.h"

#include <QTemporaryDir>

#include <utility>

namespace harrowby::app::test {

namespace {

/// How long another program's lock is waited for, so that no test waits ten seconds for a refusal.
constexpr std::chrono::milliseconds lockTime(300);

/// What the records stand on.
struct Session
{
    explicit Session(const QString &address) : connection(address, options(state.path())) {}

    static PostgresOptions options(const QString &state)
    {
        PostgresOptions options;
        options.stateFolder = state;
        options.lock = lockTime;
        return options;
    }

    QTemporaryDir state;
    PostgresConnection connection;
};

} // namespace

FussyShop fussyServerShop(const QString &address)
{
    auto session = std::make_shared<Session>(address);
    if (const auto failure = session->connection.open())
        qFatal("%s", qPrintable(failure->reason));
    const auto parts = postgres::ConnectionParts::of(session->connection);
    auto records =
        std::make_unique<FussyEngine<server::PostgresRecords>>(std::move(session), parts.access, parts.writer);
    Fuss *fuss = records.get();
    return {std::move(records), fuss};
}

} // namespace harrowby::app::test
