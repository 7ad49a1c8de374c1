// SPDX-License-Identifier: MIT
#pragma once

#include "app/search/stock_miss.h"

#include <harrowby/sqlite_connection.h>

#include <functional>
#include <memory>
#include <utility>

namespace harrowby::app {

class FoundRows;

/// The store program's connection. The till's search, and no other statement, is carried out with another comparison,
/// as long as that is switched on: its text is found anywhere in an ID or a name, in whatever case (SoughtText says
/// what counts as the same), and `*`, `%` and `_` are characters like any other. Which items are looked at, their
/// columns and order, and which failures there are stay as with SqliteConnection.
///
/// It also tells of statements that were carried out and have found no item (StockMiss).
class FindingConnection final : public SqliteConnection
{
public:
    /// `isOn` is asked at each search.
    FindingConnection(sqlite3 *database, QString location, std::function<bool()> isOn);
    ~FindingConnection() override;

    /// Called in the middle of the till's work: must not throw, enter an event loop, or use the database.
    void setMissHandler(std::function<void(const StockMiss &)> handler) { m_missHandler = std::move(handler); }

    bool Execute(const QString &statement) override;
    [[nodiscard]] std::unique_ptr<DbCursor> query(const QString &select) override;
    [[nodiscard]] std::optional<std::int64_t> countRows(const QString &select) override;

private:
    [[nodiscard]] std::optional<QString> foundText(const QString &select) const;
    void tellMiss(const QString &statement) const;
    [[nodiscard]] std::unique_ptr<DbCursor> watched(const QString &select);
    [[nodiscard]] std::shared_ptr<const FoundRows> read(const QString &select, const QString &text);

    sqlite3 *m_database;
    std::function<bool()> m_isOn;
    std::function<void(const StockMiss &)> m_missHandler;
    bool m_canFind;
    QString m_latest;                      ///< the search whose rows were read last
    std::weak_ptr<const FoundRows> m_rows; ///< those, while a cursor goes through them
};

} // namespace harrowby::app
