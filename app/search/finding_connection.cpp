// SPDX-License-Identifier: MIT
#include "app/search/finding_connection.h"

#include "app/search/finding_function.h"
#include "app/search/found_rows.h"
#include "app/search/search_statement.h"
#include "basic/logging.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

FindingConnection::FindingConnection(sqlite3 *database, QString location, std::function<bool()> isOn) :
    SqliteConnection(database, std::move(location)), m_database(database), m_isOn(std::move(isOn)),
    m_canFind(addFindingFunction(database))
{
    if (!m_canFind)
        qCWarning(lcStore, "The search keeps the engine's own comparison: its function could not be added.");
}

FindingConnection::~FindingConnection() = default;

/// What a search that is to be carried out otherwise looks for.
std::optional<QString> FindingConnection::foundText(const QString &select) const
{
    auto text = m_canFind ? searchedText(select) : std::nullopt;
    return text && m_isOn() ? std::move(text) : std::nullopt;
}

std::unique_ptr<DbCursor> FindingConnection::query(const QString &select)
{
    const auto text = foundText(select);
    if (!text)
        return SqliteConnection::query(select);
    auto rows = read(select, *text);
    if (!rows)
        return nullptr;
    m_latest = select;
    m_rows = rows;
    return std::make_unique<FoundCursor>(std::move(rows));
}

std::optional<std::int64_t> FindingConnection::countRows(const QString &select)
{
    if (const auto rows = m_rows.lock(); rows && select == m_latest)
        return rows->count();
    const auto text = foundText(select);
    if (!text)
        return SqliteConnection::countRows(select);
    const auto rows = read(select, *text);
    return rows ? std::optional(rows->count()) : std::nullopt;
}

/// Null after a failure, which is reported under the text that the till knows.
std::shared_ptr<const FoundRows> FindingConnection::read(const QString &select, const QString &text)
{
    SqliteStatement statement(m_database, findingStatement(), SqliteStatement::Purpose::Select);
    statement.bind(1, text);
    auto rows = std::make_shared<const FoundRows>(statement);
    if (!statement.hasFailed())
        return rows;
    reportFailure({DbFailure::Kind::Read, select, statement.error()->reason, statement.extendedCode()});
    return nullptr;
}

} // namespace harrowby::app
