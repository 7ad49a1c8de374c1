// SPDX-License-Identifier: MIT
#include "tests/postgres/acting_till.h"

#include <QStringList>

#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::test {

using namespace postgres;
using namespace std::chrono_literals;

ActingTill::Times ActingTill::shortTimes()
{
    Times times;
    times.waits.connecting = 300ms;
    times.waits.answer = 300ms;
    times.waits.lock = 300ms;
    times.patience = {500ms, 1000ms, 500ms};
    return times;
}

ActingTill::Times ActingTill::insistentTimes()
{
    Times times = shortTimes();
    times.patience = {10s, 30s, 10s};
    return times;
}

ActingTill::Times ActingTill::patientTimes()
{
    Times times;
    times.waits.connecting = 20s;
    times.waits.answer = 20s;
    times.patience = {20s, 30s, 20s};
    return times;
}

ActingTill::ActingTill(const QList<quint16> &ports, const QString &journalFolder, const Times &times) :
    m_server(m_session, [this] { return connect(); }), m_journal(journalFolder), m_actions(m_server, m_journal)
{
    QStringList hosts;
    QStringList numbers;
    for (const quint16 port : ports) {
        hosts << u"127.0.0.1"_s;
        numbers << QString::number(port);
    }
    m_target.conninfo =
        u"host=%1 port=%2 user=postgres dbname=shop"_s.arg(hosts.join(u','), numbers.join(u',')).toUtf8();
    setTimes(times);
    m_actions.setResolvedHandler(
        [this](const OpenAction &open, Actions::Outcome outcome) { m_told[open.what.toLongLong()] = outcome; });
}

void ActingTill::setTimes(const Times &times)
{
    m_times = times;
    m_times.waits.hook = [this](const PgWait &) {
        if (m_waiting)
            m_waiting();
        return true;
    };
    m_server.setPatience(times.patience);
    m_server.setBudget({times.waits.answer, times.waits.lock});
    m_server.setHook(m_times.waits.hook);
}

Result<void, PgError> ActingTill::connect()
{
    auto connected = m_session.connect(m_target, m_times.waits);
    if (connected)
        m_target.leastTimeline = m_session.server().timeline;
    return connected;
}

Actions::Outcome ActingTill::sell(qint64 sale)
{
    const Actions::Outcome outcome = write(saleOf(sale)).outcome;
    m_told[sale] = outcome;
    return outcome;
}

Actions::End ActingTill::write(const Write &write)
{
    return m_actions.write(write);
}

QString ActingTill::tables()
{
    return u"create table harrowby.sold (sale bigint); create table harrowby.stock (item int primary key, pieces "
           u"bigint); "
           "insert into harrowby.stock values (1, 1000000)"_s;
}

Write ActingTill::saleOf(qint64 sale)
{
    const QByteArray number = QByteArray::number(sale);
    return {{},
            "with one as (update harrowby.stock set pieces = pieces - 1 where item = 1) insert into harrowby.sold "
            "values (" +
                number + ")",
            QString::fromLatin1(number)};
}

} // namespace harrowby::test
