// SPDX-License-Identifier: MIT
#include "app/server/server_opening.h"

#include "app/records/record_tables.h"
#include "app/records/server_words.h"
#include "app/shop/opening_window.h"
#include "app/shop/password_rules.h"
#include "basic/administrator.h"
#include "basic/store_address.h"

#include <QCoreApplication>

#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

/// The hook while a store is being opened. Nothing uses the connection yet, so all events are handled.
class OpeningWait
{
public:
    explicit OpeningWait(const QString &store) : m_store(storeWords(store)) {}

    bool goesOn()
    {
        if (!m_window) {
            m_window = std::make_unique<OpeningWindow>(
                u"The server of the store \"%1\" is being reached \u2026"_s.arg(m_store));
            m_window->show();
        }
        QCoreApplication::processEvents();
        return true;
    }

private:
    QString m_store;
    std::unique_ptr<OpeningWindow> m_window;
};

RecordStatement countUsers()
{
    return {u"select count(*) from Users"_s, {}};
}

std::optional<bool> isEmpty(const Records::Answer<QList<RecordRow>> &count)
{
    if (!count || count->isEmpty())
        return {};
    return recordNumber(count->constFirst().constFirst()) == 0;
}

} // namespace

Result<std::unique_ptr<ServerStore>, QString> openServerStore(const QString &store, ServerOptions options)
{
    const auto engine = serverEngine();
    if (!engine)
        return Unexpected(problemWords({ServerProblem::Kind::NoPackage, engine.error(), {}}, store));
    auto afterwards = std::exchange(options.waitHook, {});
    OpeningWait opening(store);
    options.waitHook = [&opening](const DbWait &) { return opening.goesOn(); };
    auto opened = (*engine)->open(store, options);
    if (!opened)
        return Unexpected(problemWords(opened.error(), store));
    (*opened)->setWaitHook(std::move(afterwards));
    return *std::move(opened);
}

ServerUsers usersOf(Records &records)
{
    const auto none = isEmpty(records.read(countUsers()));
    if (!none)
        return ServerUsers::NotKnown;
    if (!*none)
        return ServerUsers::There;
    const auto right = records.read({u"select has_table_privilege('users', 'insert')"_s, {}});
    const bool mayAdd = right && !right->isEmpty() && recordNumber(right->constFirst().constFirst()) != 0;
    return mayAdd ? ServerUsers::MayBeAdded : ServerUsers::AddedElsewhere;
}

Records::Answer<bool> addFirstUser(Records &records, const QString &password)
{
    const RecordStatement adding = {
        u"insert into Users (Username, Password, Type, InventoryUse, InventorySales, InventoryReport, InventoryUndo, "
        "InventoryDelete, InventorySettings, InventoryReorder) values (?, ?, 'ADMINISTRATOR', -1, -1, -1, -1, -1, -1, "
        "-1)"_s,
        {QString(administratorName), storedPassword(password)}};
    const auto isNobodyThere = [&]() -> Records::Answer<bool> {
        const auto count = records.read(countUsers());
        if (!count)
            return Unexpected(count.error());
        return isEmpty(count).value_or(false);
    };
    return records.writeTogetherIf(kept::activity(), isNobodyThere, {adding});
}

} // namespace harrowby::app
