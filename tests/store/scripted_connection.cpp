// SPDX-License-Identifier: MIT
#include "tests/store/scripted_connection.h"

#include <iterator>
#include <stdexcept>

namespace harrowby {

namespace {

using namespace Qt::StringLiterals;

class ScriptedCursor final : public DbCursor
{
public:
    explicit ScriptedCursor(ScriptedConnection &connection) : m_connection(connection)
    {
        ++m_connection.liveCursors;
        m_connection.position = 0;
    }
    ~ScriptedCursor() override { --m_connection.liveCursors; }

    [[nodiscard]] QStringList columnNames() const override
    {
        (void)m_connection.comesThrough(u"columnNames"_s, DbFailure::Kind::Read);
        return m_connection.columns;
    }

    [[nodiscard]] Step next() override
    {
        const QString numbered = u"next "_s + QString::number(m_at + 1);
        if (!m_connection.comesThrough(u"next"_s, DbFailure::Kind::Read) ||
            !m_connection.comesThrough(numbered, DbFailure::Kind::Read))
            return Step::Failed;
        if (m_at == m_connection.rows.size())
            return Step::Done;
        m_connection.position = ++m_at;
        return Step::Row;
    }

    [[nodiscard]] DbValue value(int column) const override
    {
        (void)m_connection.comesThrough(u"value"_s, DbFailure::Kind::Read);
        return m_connection.rows[m_at - 1][static_cast<std::size_t>(column)];
    }

    [[nodiscard]] std::optional<DbRowId> rowId() const override
    {
        return m_connection.idsComeWithRows ? std::optional(m_connection.ids[m_at - 1]) : std::nullopt;
    }
    [[nodiscard]] std::optional<std::int64_t> rowCount() const override
    {
        return m_connection.countComesWithRows ? std::optional(std::ssize(m_connection.rows)) : std::nullopt;
    }
    [[nodiscard]] bool standsApart() const noexcept override { return m_connection.standsApart; }

private:
    ScriptedConnection &m_connection;
    std::size_t m_at = 0; ///< rows that it has reached
};

} // namespace

ScriptedConnection::ScriptedConnection()
{
    setFailureHandler([this](const DbFailure &failure) { failures.push_back(failure); });
}

void ScriptedConnection::fill(int count)
{
    for (int i = 0; i < count; ++i) {
        rows.push_back({static_cast<std::int64_t>(i), u"row "_s + QString::number(i)});
        ids.push_back(100 + i);
    }
}

bool ScriptedConnection::comesThrough(const QString &operation, DbFailure::Kind kind)
{
    ++calls[operation];
    switch (faults.value(operation, Fault::None)) {
    case Fault::None:
        return true;
    case Fault::Failure:
        reportFailure({kind, operation, u"scripted failure"_s, 1});
        return false;
    case Fault::Exception:
        throw std::runtime_error("scripted exception");
    case Fault::Oddity:
        throw 42; // NOLINT: hosts may throw anything
    }
    return true;
}

bool ScriptedConnection::Execute(const QString &statement)
{
    statements.append(statement);
    return comesThrough(u"Execute"_s, DbFailure::Kind::Write);
}

std::unique_ptr<DbCursor> ScriptedConnection::query(const QString &select)
{
    statements.append(select);
    return comesThrough(u"query"_s, DbFailure::Kind::Read) ? std::make_unique<ScriptedCursor>(*this) : nullptr;
}

std::optional<std::int64_t> ScriptedConnection::countRows(const QString &select)
{
    statements.append(select);
    if (!comesThrough(u"countRows"_s, DbFailure::Kind::Read))
        return {};
    return static_cast<std::int64_t>(rows.size());
}

std::optional<std::vector<DbRowId>> ScriptedConnection::rowIds(const QString &select)
{
    statements.append(select);
    idsAskedOnFirstRow = liveCursors == 1 && position == 1;
    if (!comesThrough(u"rowIds"_s, DbFailure::Kind::Read))
        return {};
    return ids;
}

bool ScriptedConnection::insertRow(const QString &intoTable, const DbAssignments &values)
{
    table = intoTable;
    written = values;
    return comesThrough(u"insertRow"_s, DbFailure::Kind::Write);
}

bool ScriptedConnection::updateRow(const QString &inTable, DbRowId changedRow, const DbAssignments &values)
{
    table = inTable;
    row = changedRow;
    written = values;
    return comesThrough(u"updateRow"_s, DbFailure::Kind::Write);
}

std::unique_ptr<DbCursor> ScriptedConnection::queryAs(const QString &select, DbReading how)
{
    readings.push_back(how);
    return DbConnection::queryAs(select, how);
}

bool ScriptedConnection::holdFor(const QString &select, HeldWrite write)
{
    holds << (write == HeldWrite::Change ? u"change "_s : u"insert "_s) + select;
    return DbConnection::holdFor(select, write);
}

QString ScriptedConnection::location() const
{
    return {};
}

} // namespace harrowby
