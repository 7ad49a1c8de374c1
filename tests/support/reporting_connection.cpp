// SPDX-License-Identifier: MIT
#include "tests/support/reporting_connection.h"

#include "tests/support/database.h"

using namespace Qt::StringLiterals;

namespace harrowby::test {

namespace {

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

bool ReportingConnection::Execute(const QString &statement)
{
    before(statement);
    const bool done = m_below->Execute(statement);
    after(statement, done);
    return done;
}

std::unique_ptr<DbCursor> ReportingConnection::query(const QString &select)
{
    return m_below->query(select);
}

std::optional<std::int64_t> ReportingConnection::countRows(const QString &select)
{
    return m_below->countRows(select);
}

std::optional<std::vector<DbRowId>> ReportingConnection::rowIds(const QString &select)
{
    return m_below->rowIds(select);
}

bool ReportingConnection::insertRow(const QString &table, const DbAssignments &values)
{
    const QString statement = insertText(table, values);
    before(statement);
    const bool done = m_below->insertRow(table, values);
    written(statement, done);
    return done;
}

bool ReportingConnection::updateRow(const QString &table, DbRowId row, const DbAssignments &values)
{
    const QString statement = updateText(table, row, values);
    before(statement);
    const bool done = m_below->updateRow(table, row, values);
    written(statement, done);
    return done;
}

bool ReportingConnection::hold()
{
    m_held.clear();
    m_holds = m_below->hold();
    return m_holds;
}

bool ReportingConnection::settle(const QString &write)
{
    m_holds = false;
    const bool kept = m_below->settle(write);
    if (!m_held.isEmpty())
        after(m_held, kept);
    return kept;
}

void ReportingConnection::written(const QString &statement, bool done)
{
    if (m_holds && done)
        m_held = statement;
    else
        after(statement, done);
}

} // namespace harrowby::test
