// SPDX-License-Identifier: MIT
#include "tests/doubles/server_shop.h"

#include <harrowby/postgres_connection.h>

#include <QTemporaryDir>

using namespace Qt::StringLiterals;

namespace harrowby::test {

namespace {

/// How long another program's lock is waited for, so that no test waits ten seconds for a refusal; as in a shop where
/// the environment variable HARROWBY_TEST_PATIENT is set.
constexpr std::chrono::milliseconds lockTime(300);

} // namespace

std::shared_ptr<DbConnection> connectToServer(const QString &path, const QString &location)
{
    static const QTemporaryDir states; // of what the product keeps on a till's own disk; one for each connection
    static int connections = 0;
    PostgresOptions options;
    options.location = location;
    if (!qEnvironmentVariableIsSet("HARROWBY_TEST_PATIENT"))
        options.lock = lockTime;
    options.stateFolder = states.filePath(QString::number(++connections));
    QString asTill = path; // the tests' own sessions may do everything
    asTill.replace(u"//postgres@"_s, u"//till@"_s);
    return std::make_shared<PostgresConnection>(asTill, options);
}

} // namespace harrowby::test
