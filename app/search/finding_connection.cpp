// SPDX-License-Identifier: MIT
#include "app/search/finding_connection.h"

#include "app/search/finding_function.h"
#include "app/search/found_rows.h"
#include "app/search/search_statement.h"
#include "basic/logging.h"

#include <sqlite3.h>

#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

/// Another cursor, and a call when that has no row at all.
class EmptinessWatch final : public DbCursor
{
public:
    EmptinessWatch(std::unique_ptr<DbCursor> below, std::function<void()> whenEmpty) :
        m_below(std::move(below)), m_whenEmpty(std::move(whenEmpty))
    {
    }

    [[nodiscard]] QStringList columnNames() const override { return m_below->columnNames(); }
    [[nodiscard]] Step next() override
    {
        const Step step = m_below->next();
        const auto whenEmpty = std::exchange(m_whenEmpty, {});
        if (whenEmpty && step == Step::Done)
            whenEmpty();
        return step;
    }
    [[nodiscard]] DbValue value(int column) const override { return m_below->value(column); }
    [[nodiscard]] std::optional<QByteArrayView> text(int column) const override { return m_below->text(column); }
    [[nodiscard]] std::optional<DbRowId> rowId() const override { return m_below->rowId(); }
    [[nodiscard]] std::optional<std::int64_t> rowCount() const override { return m_below->rowCount(); }
    [[nodiscard]] bool standsApart() const noexcept override { return m_below->standsApart(); }

private:
    std::unique_ptr<DbCursor> m_below;
    std::function<void()> m_whenEmpty; ///< until the first step
};

} // namespace

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

bool FindingConnection::Execute(const QString &statement)
{
    const bool isDone = SqliteConnection::Execute(statement);
    if (isDone && sqlite3_changes(m_database) == 0)
        tellMiss(statement);
    return isDone;
}

/// The statement was carried out, and has found nothing.
void FindingConnection::tellMiss(const QString &statement) const
{
    const auto miss = m_missHandler ? missOf(statement) : std::nullopt;
    if (miss)
        m_missHandler(*miss);
}

/// As the plain connection does it.
std::unique_ptr<DbCursor> FindingConnection::watched(const QString &select)
{
    auto cursor = SqliteConnection::query(select);
    if (!cursor || !m_missHandler || !looksForItem(select))
        return cursor;
    return std::make_unique<EmptinessWatch>(std::move(cursor), [this, select] { tellMiss(select); });
}

std::unique_ptr<DbCursor> FindingConnection::query(const QString &select)
{
    const auto text = foundText(select);
    if (!text)
        return watched(select);
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
