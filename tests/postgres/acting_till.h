// SPDX-License-Identifier: MIT
#pragma once

#include "postgres/actions.h"
#include "postgres/session_actions.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <functional>
#include <map>
#include <memory>

namespace harrowby::test {

/// A running program that sells on a server: a session, its numbers, its journal.
class ActingTill
{
public:
    struct Times
    {
        PgWaits waits;
        postgres::ActionPatience patience;
    };
    /// For what is to be given up soon, and for that alone: a busy machine may need longer for anything.
    [[nodiscard]] static Times shortTimes();
    /// Each answer is given up soon, and asked for again for long.
    [[nodiscard]] static Times insistentTimes();
    /// For what is to be done in the end.
    [[nodiscard]] static Times patientTimes();

    /// `ports` of 127.0.0.1: the servers, or what stands before them.
    ActingTill(const QList<quint16> &ports, const QString &journalFolder, const Times &times = {});

    /// For the writes to come, and for connecting.
    void setTimes(const Times &times);
    /// Called again and again while the till waits.
    void setWaiting(std::function<void()> waiting) { m_waiting = std::move(waiting); }

    /// Sells one piece: the sale's number into "sold", one off the stock. In one statement, so that both are there or
    /// not.
    postgres::Actions::Outcome sell(qint64 sale);
    postgres::Actions::End write(const postgres::Write &write);
    /// What has been told of each sale, the last time.
    [[nodiscard]] const std::map<qint64, postgres::Actions::Outcome> &told() const { return m_told; }

    [[nodiscard]] postgres::Actions &actions() { return m_actions; }
    [[nodiscard]] PgSession &session() { return m_session; }

    /// What sell() needs: the tables "sold" and "stock" in the schema.
    [[nodiscard]] static QString tables();
    [[nodiscard]] static postgres::Write saleOf(qint64 sale);

    [[nodiscard]] Result<void, PgError> connect();

private:
    PgTarget m_target;
    Times m_times;
    std::function<void()> m_waiting;
    PgSession m_session;
    postgres::SessionActions m_server;
    postgres::ActionFolder m_journal;
    postgres::Actions m_actions;
    std::map<qint64, postgres::Actions::Outcome> m_told;
};

} // namespace harrowby::test
