// SPDX-License-Identifier: MIT
#include "app/records/server_engine.h"
#include "plugins/server/postgres_store.h"
#include "plugins/server/server_records.h"
#include "postgres/storable.h"

#include <QObject>

#include <utility>

namespace harrowby::server {

class ServerPlugin : public QObject, public app::ServerEngine
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID HARROWBY_SERVER_ENGINE_IID FILE "server_plugin.json")
    Q_INTERFACES(harrowby::app::ServerEngine)

public:
    Result<std::unique_ptr<app::ServerStore>, app::ServerProblem> open(const QString &target,
                                                                       const app::ServerOptions &options) override
    {
        auto store = std::make_unique<PostgresStore>(target, options);
        if (auto problem = store->open())
            return Unexpected(*std::move(problem));
        return std::unique_ptr<app::ServerStore>(std::move(store));
    }

    Result<std::unique_ptr<app::StoreRecords>, app::ServerProblem>
    openRecords(const QString &target, app::Access access, std::function<bool()> goesOn, const QUuid &store) override
    {
        return ServerRecords::open(target, access, std::move(goesOn), store);
    }

    [[nodiscard]] std::optional<QString> unstorable(const QString &table, const DbAssignments &values) const override
    {
        return postgres::unstorable(table, values);
    }

    [[nodiscard]] app::RecordValue converted(const QString &table, const QString &column,
                                             const app::RecordValue &value) const override
    {
        return postgres::converted(table, column, value);
    }
};

} // namespace harrowby::server

#include "server_plugin.moc"
