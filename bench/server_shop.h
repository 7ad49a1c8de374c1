// SPDX-License-Identifier: MIT
#pragma once

#include "app/server/server_wait.h"
#include "bench/measured_store.h"

#include <QTemporaryDir>
#include <QUuid>

#include <functional>

struct pg_conn;

namespace harrowby {
class PostgresConnection;
}

namespace harrowby::bench {

/// A store on a running server, which harrowby-server or BenchServer has made.
class ServerShop final : public MeasuredStore
{
public:
    /// `conninfo` in libpq's form. Throws std::runtime_error when the server cannot be reached.
    ServerShop(QString place, const QString &conninfo);
    ~ServerShop() override;

    /// Who counts the round trips, if anybody does.
    void setCounter(std::function<int()> counter) { m_counter = std::move(counter); }

    [[nodiscard]] std::shared_ptr<DbConnection> connect() override;
    [[nodiscard]] std::unique_ptr<app::Records> records() override;
    /// As a till must send them: in the server's words, and each write, or what is written together, with its number
    /// of action.
    [[nodiscard]] double rawMs(const RawStatements &statements) override;
    [[nodiscard]] RawStatements search(const QString &text) const override;
    [[nodiscard]] bool isServer() const override { return true; }
    [[nodiscard]] QString place() const override { return m_place; }
    [[nodiscard]] std::optional<int> roundTrips() const override;

private:
    [[nodiscard]] QByteArray inServersWords(const RawStatement &statement);
    [[nodiscard]] QByteArray nextAction();

    QString m_place;
    QString m_conninfo;
    QTemporaryDir m_state; ///< of the connections
    std::shared_ptr<app::ServerWait> m_wait = std::make_shared<app::ServerWait>();
    QUuid m_writer = QUuid::createUuid();
    qint64 m_written = 0;
    bool m_isTogether = false; ///< the statement stands between a begin and its commit
    std::weak_ptr<PostgresConnection> m_latest;
    pg_conn *m_raw = nullptr;
    std::function<int()> m_counter;
};

} // namespace harrowby::bench
