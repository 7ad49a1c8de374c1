// SPDX-License-Identifier: MIT
#include "tests/postgres/records_desk.h"

#include <QTest>

namespace harrowby::test {

using namespace app;
using namespace Qt::StringLiterals;
using server::PostgresStore;

const RecordTable &RecordsDesk::notes()
{
    static const RecordTable table = {
        u"HarrowbyNote"_s,
        {u"create table if not exists HarrowbyNote (Name text not null primary key, Worth double precision)"_s,
         u"create index if not exists harrowby_note_worth on HarrowbyNote (Worth)"_s}};
    return table;
}

RecordStatement RecordsDesk::insertNote(const QString &name, const RecordValue &worth)
{
    return {u"insert into HarrowbyNote (Name, Worth) values (?, ?)"_s, {name, worth}};
}

void RecordsDesk::initTestCase()
{
    if (const QString missing = PrivateCluster::missing(); !missing.isEmpty())
        QSKIP(qPrintable(missing));
    m_server = std::make_unique<ServerFixture>();
    m_proxy = std::make_unique<Proxy>(m_server->cluster.port());
}

void RecordsDesk::init()
{
    m_server->cluster.sql(u"drop table if exists harrowby.HarrowbyNote"_s);
    m_server->refill();
    m_told.clear();
    m_resolved.clear();
    m_store = open(throughProxy());
    m_records = m_store->records();
    m_records->setFailureHandler([this](const DbFailure &failure) { m_told << failure; });
}

void RecordsDesk::cleanup()
{
    m_proxy->speak();
    m_proxy->setTarget(m_server->cluster.port());
    m_records.reset();
    m_store.reset();
}

std::unique_ptr<PostgresStore> RecordsDesk::open(const QString &target)
{
    const PostgresOptions shortTimes = m_server->options();
    ServerOptions options;
    options.stateFolder = shortTimes.stateFolder;
    options.connecting = shortTimes.connecting;
    options.silence = shortTimes.silence;
    options.lock = shortTimes.lock;
    options.rest = shortTimes.rest;
    options.resolvedHandler = [this](const QString &what, WriteOutcome known) {
        m_resolved << Resolved{what, known == WriteOutcome::Done};
    };
    auto store = std::make_unique<PostgresStore>(target, options);
    if (const auto problem = store->open())
        qWarning("not opened: %ls", qUtf16Printable(problem->reason));
    return store;
}

QString RecordsDesk::throughProxy() const
{
    return u"host=127.0.0.1 port=%1 user=postgres dbname=shop sslmode=disable"_s.arg(m_proxy->port());
}

QString RecordsDesk::notesOnServer()
{
    return m_server->cluster
        .sql(
            u"select string_agg(Name || '=' || coalesce(Worth::text, ''), ' ' order by Name) from harrowby.HarrowbyNote"_s)
        .join(u'|');
}

QStringList RecordsDesk::names()
{
    QStringList all;
    const auto rows = m_records->read(notes(), allNotes);
    for (const RecordRow &row : rows.value_or(QList<RecordRow>()))
        all << recordText(row.at(0));
    return all;
}

} // namespace harrowby::test
