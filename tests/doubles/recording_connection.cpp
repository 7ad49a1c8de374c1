// SPDX-License-Identifier: MIT
#include "tests/doubles/recording_connection.h"

#include "tests/doubles/shop_file.h"

#include <variant>

using namespace Qt::StringLiterals;

namespace harrowby::test {

namespace {

/// Passes a result's first rows on, then fails.
class BreakingCursor final : public DbCursor
{
public:
    BreakingCursor(std::unique_ptr<DbCursor> below, int rows) : m_below(std::move(below)), m_rows(rows) {}

    [[nodiscard]] QStringList columnNames() const override { return m_below->columnNames(); }
    [[nodiscard]] Step next() override { return m_rows-- > 0 ? m_below->next() : Step::Failed; }
    [[nodiscard]] DbValue value(int column) const override { return m_below->value(column); }
    [[nodiscard]] std::optional<QByteArrayView> text(int column) const override { return m_below->text(column); }
    [[nodiscard]] std::optional<DbRowId> rowId() const override { return m_below->rowId(); }
    [[nodiscard]] std::optional<std::int64_t> rowCount() const override { return m_below->rowCount(); }
    [[nodiscard]] bool standsApart() const noexcept override { return m_below->standsApart(); }

private:
    std::unique_ptr<DbCursor> m_below;
    int m_rows;
};

struct Literal
{
    QString operator()(std::monostate) const { return u"NULL"_s; }
    QString operator()(std::int64_t value) const { return QString::number(value); }
    QString operator()(double value) const { return QString::number(value, 'e', 16); }
    QString operator()(const QString &value) const { return quoted(value); }
    QString operator()(const QByteArray &value) const { return u"X'"_s + QString::fromLatin1(value.toHex()) + u'\''; }
};

QString insertText(const QString &table, const DbAssignments &values)
{
    QStringList columns;
    QStringList literals;
    for (const auto &[column, value] : values) {
        columns << column;
        literals << std::visit(Literal(), value);
    }
    return u"INSERT INTO %1 (%2) VALUES "_s.arg(table, columns.join(u',')) + u'(' + literals.join(u',') + u')';
}

QString updateText(const QString &table, DbRowId row, const DbAssignments &values)
{
    QStringList columns;
    for (const auto &[column, value] : values)
        columns << column + u" = "_s + std::visit(Literal(), value);
    return u"UPDATE "_s + table + u" SET "_s + columns.join(u',') + u" WHERE rowid = "_s + QString::number(row);
}

} // namespace

bool RecordingConnection::passes(const QString &statement)
{
    statements << statement;
    before(statement);
    m_isStopped = true; // also when the test throws
    m_isStopped = fails && fails(statement);
    if (!m_isStopped)
        return true;
    reportFailure({DbFailure::Kind::Write, statement, u"picked by the test"_s, 0});
    return false;
}

bool RecordingConnection::write(const QString &text, const std::function<bool()> &work)
{
    beforeWrite(text);
    const bool done = work();
    if (m_holds && done)
        m_held = text;
    else
        afterWrite(text, done);
    return done;
}

bool RecordingConnection::Execute(const QString &statement)
{
    if (!passes(statement))
        return false;
    beforeWrite(statement);
    const bool done = m_below->Execute(statement);
    afterWrite(statement, done);
    return done;
}

std::unique_ptr<DbCursor> RecordingConnection::query(const QString &select)
{
    return queryAs(select, DbReading::Whole);
}

std::unique_ptr<DbCursor> RecordingConnection::queryAs(const QString &select, DbReading how)
{
    std::unique_ptr<DbCursor> cursor = passes(select) ? m_below->queryAs(select, how) : nullptr;
    const int rows = rowsUntilBreak(select);
    return cursor && rows >= 0 ? std::make_unique<BreakingCursor>(std::move(cursor), rows) : std::move(cursor);
}

std::optional<std::int64_t> RecordingConnection::countRows(const QString &select)
{
    ++counted;
    return m_below->countRows(select);
}

std::optional<std::vector<DbRowId>> RecordingConnection::rowIds(const QString &select)
{
    return m_below->rowIds(select);
}

bool RecordingConnection::insertRow(const QString &table, const DbAssignments &values)
{
    return passes(u"insert "_s + table) &&
           write(insertText(table, values), [&] { return m_below->insertRow(table, values); });
}

bool RecordingConnection::updateRow(const QString &table, DbRowId row, const DbAssignments &values)
{
    return passes(u"update "_s + table) &&
           write(updateText(table, row, values), [&] { return m_below->updateRow(table, row, values); });
}

bool RecordingConnection::hold()
{
    return beginHold(!refusesHolds && m_below->hold());
}

bool RecordingConnection::holdFor(const QString &select, HeldWrite write)
{
    return beginHold(!refusesHolds && m_below->holdFor(select, write));
}

bool RecordingConnection::beginHold(bool isHeld)
{
    m_held.clear();
    m_holds = isHeld;
    return m_holds;
}

WriteOutcome RecordingConnection::lastWrite() const
{
    if (mayHave)
        return *mayHave ? WriteOutcome::Unknown : WriteOutcome::Refused;
    return m_isStopped ? WriteOutcome::Refused : m_below->lastWrite();
}

bool RecordingConnection::settle(const QString &write)
{
    m_holds = false;
    const bool kept = settleBelow(write);
    if (!m_held.isEmpty())
        afterWrite(m_held, kept);
    return kept;
}

bool RecordingConnection::settleBelow(const QString &write)
{
    if (write.isEmpty() || !losesCommits)
        return m_below->settle(write);
    m_below->settle({});
    reportFailure({DbFailure::Kind::Write, write, u"picked by the test"_s, 0});
    return false;
}

} // namespace harrowby::test
