// SPDX-License-Identifier: MIT
// A till's connection without its window: carries out the statements that it is given, and says what became of each.
//   shop_till TARGET STATE_FOLDER STATEMENT…
//   shop_till TARGET STATE_FOLDER --sell NAME SECONDS   sells, one purchase after the other, and names those that were
//   done; ends with a sale when it is told to (SIGTERM)
#include <harrowby/postgres_connection.h>

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QTextStream>

#include <algorithm>
#include <chrono>
#include <csignal>

using namespace Qt::StringLiterals;

namespace harrowby {

namespace {

QTextStream out(stdout);
QTextStream errors(stderr);
volatile std::sig_atomic_t isToldToEnd = 0;

QString shown(const DbValue &value)
{
    if (const auto *text = std::get_if<QString>(&value))
        return *text;
    if (const auto *whole = std::get_if<std::int64_t>(&value))
        return QString::number(*whole);
    if (const auto *figure = std::get_if<double>(&value))
        return QString::number(*figure);
    return {};
}

bool showRows(PostgresConnection &connection, const QString &select)
{
    const auto rows = connection.query(select);
    if (!rows)
        return false;
    while (rows->next() == DbCursor::Step::Row) {
        QStringList values;
        for (int column = 0; column < rows->columnNames().size(); ++column)
            values << shown(rows->value(column));
        out << values.join(u'|') << Qt::endl;
    }
    return true;
}

bool carryOut(PostgresConnection &connection, const QString &statement)
{
    connection.beginAction();
    return statement.startsWith(u"select"_s, Qt::CaseInsensitive) ? showRows(connection, statement)
                                                                  : connection.Execute(statement);
}

/// As a person does: what was refused before it had begun is tried again.
bool begin(PostgresConnection &connection, const QString &statement)
{
    while (isToldToEnd == 0) {
        connection.beginAction();
        if (connection.Execute(statement))
            return true;
        if (connection.lastWrite() != WriteOutcome::Refused)
            return false;
    }
    return false;
}

/// Whether each sale that was begun was done.
bool sell(PostgresConnection &connection, const QString &name, std::chrono::seconds duration)
{
    const QDeadlineTimer end(duration);
    for (int number = 1; !end.hasExpired() && isToldToEnd == 0; ++number) {
        const QString id = u"%1-%2"_s.arg(name).arg(number, 6, 10, QChar(u'0'));
        if (!begin(connection, u"insert into PurchaseCart (PurchaseID) values ('%1')"_s.arg(id)))
            return isToldToEnd != 0 && connection.lastWrite() == WriteOutcome::Refused;
        if (!connection.Execute(
                u"Update StockList Set StockAvailable = StockAvailable - 1 where StockID = 'MIL00001'"_s))
            return false;
        out << id << Qt::endl;
    }
    return true;
}

} // namespace

} // namespace harrowby

int main(int argc, char **argv)
{
    using namespace harrowby;
    const QCoreApplication application(argc, argv);
    const QStringList arguments = application.arguments();
    if (arguments.size() < 4)
        return 2;
    PostgresOptions options;
    options.stateFolder = arguments.at(2);
    PostgresConnection connection(arguments.at(1), options);
    connection.setFailureHandler([](const DbFailure &failure) {
        errors << "FAILED " << failure.engineState << ' ' << failure.reason << Qt::endl;
    });
    if (const auto failure = connection.open()) {
        out << "CLOSED " << failure->engineState << ' ' << failure->reason << Qt::endl;
        return 1;
    }
    const QStringList rest = arguments.sliced(3);
    std::signal(SIGTERM, [](int) { isToldToEnd = 1; });
    if (rest.first() == u"--sell"_s)
        return rest.size() == 3 && sell(connection, rest.at(1), std::chrono::seconds(rest.at(2).toInt())) ? 0 : 1;
    return std::all_of(rest.cbegin(), rest.cend(),
                       [&connection](const QString &statement) { return carryOut(connection, statement); })
               ? 0
               : 1;
}
