// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/server_engine.h"
#include "plugins/server/postgres_store.h"
#include "tests/doubles/proxy.h"
#include "tests/postgres/server_fixture.h"

#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>

#include <memory>

namespace harrowby::test {

/// The program's records on a private server, over a network that can be broken; store and table of notes anew for each
/// test function.
class RecordsDesk : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

protected:
    struct Resolved
    {
        QString what;
        bool isDone = false;
    };

    [[nodiscard]] static const app::RecordTable &notes();
    [[nodiscard]] static app::RecordStatement insertNote(const QString &name, const app::RecordValue &worth = {});

    [[nodiscard]] std::unique_ptr<server::PostgresStore> open(const QString &target);
    [[nodiscard]] QString throughProxy() const;
    /// "a=1 b=2", past the records.
    [[nodiscard]] QString notesOnServer();
    /// As the records read them.
    [[nodiscard]] QStringList names();

    const app::RecordStatement allNotes{QStringLiteral("select Name, Worth from HarrowbyNote order by Name"), {}};
    const app::RecordStatement raiseAll{QStringLiteral("update HarrowbyNote set Worth = Worth + 1"), {}};
    std::unique_ptr<ServerFixture> m_server;
    std::unique_ptr<Proxy> m_proxy;
    std::unique_ptr<server::PostgresStore> m_store;
    std::unique_ptr<app::Records> m_records;
    QList<DbFailure> m_told;
    QList<Resolved> m_resolved;
};

} // namespace harrowby::test
