// SPDX-License-Identifier: MIT
#include "store/failure_reports.h"

#include "basic/logging.h"

#include <exception>

namespace harrowby {

namespace {

using namespace Qt::StringLiterals;

QString caughtReason()
{
    try {
        throw;
    } catch (const std::exception &exception) {
        return QString::fromLocal8Bit(exception.what());
    } catch (...) {
        return u"the connection threw something that is no exception"_s;
    }
}

} // namespace

void report(const std::shared_ptr<DbConnection> &connection, const DbFailure &failure) noexcept
{
    if (connection)
        connection->reportFailure(failure);
    else
        qCWarning(lcStore).noquote() << failure.reason << failure.statement;
}

void reportCaught(const std::shared_ptr<DbConnection> &connection, DbFailure::Kind kind,
                  const QString &statement) noexcept
{
    report(connection, {kind, statement, caughtReason(), 0});
}

void reportMissing(DbFailure::Kind kind, const QString &statement) noexcept
{
    report({}, {kind, statement, u"there is no connection"_s, 0});
}

} // namespace harrowby
