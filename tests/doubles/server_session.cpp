// SPDX-License-Identifier: MIT
#include "tests/doubles/server_shop.h"

#include <QRegularExpression>

#include <cmath>

#include <libpq-fe.h>

using namespace Qt::StringLiterals;

namespace harrowby::test {

namespace {

constexpr Oid booleanType = 16;
constexpr Oid floatType = 701;
constexpr Oid numericType = 1700;
constexpr double firstInexact = 9007199254740992.0;

/// Longest a lock is waited for: SQLite refuses it at once, but a session that is left ends here a while later.
constexpr auto sessionSettings = "SET search_path = harrowby, pg_catalog, sqlite; SET lock_timeout = '200ms'; "
                                 "SET client_min_messages = error";

constexpr auto shopTables = "InventoryCategory, PurchaseCart, StockList, StoreSettings, SysUsage, Users"_L1;

/// A whole number without a point, as a column that is NUMERIC keeps it; else fifteen digits.
QString numberText(const QString &text)
{
    bool isNumber = false;
    const double value = text.toDouble(&isNumber);
    if (!isNumber || !std::isfinite(value))
        return text;
    if (value == std::floor(value) && std::abs(value) < firstInexact)
        return QString::number(static_cast<qint64>(value));
    return QString::number(value, 'g', 15);
}

QString cellText(const PGresult *result, int row, int column)
{
    const QString text = QString::fromUtf8(PQgetvalue(result, row, column));
    switch (PQftype(result, column)) {
    case booleanType:
        return text == u't' ? u"1"_s : u"0"_s;
    case floatType:
    case numericType:
        return numberText(text);
    default:
        return text;
    }
}

QStringList rowsOf(const PGresult *result, int columns, const QString &null)
{
    if (columns > 1 && QLatin1StringView(PQfname(result, columns - 1)) == "rowid_"_L1)
        --columns; // a file hides it
    QStringList all;
    for (int row = 0; row < PQntuples(result); ++row) {
        QStringList cells;
        for (int column = 0; column < columns; ++column)
            cells << (PQgetisnull(result, row, column) != 0 ? null : cellText(result, row, column));
        all << cells.join(u'|');
    }
    return all;
}

struct Rule
{
    QRegularExpression pattern;
    QString replacement;
};

Rule rule(const QString &pattern, const QString &replacement)
{
    return {QRegularExpression(pattern, QRegularExpression::CaseInsensitiveOption), replacement};
}

/// Of what stands outside literals.
QString translated(QString piece)
{
    static const QList<Rule> rules{
        rule(u"\\bpragma integrity_check\\b"_s, u"SELECT 'ok'"_s),
        rule(u"\\bpragma\\b[^;]*"_s, QString()),
        rule(u"\\browid\\b"_s, u"rowid_"_s),
        rule(u"\\bbegin immediate\\b"_s, u"BEGIN; LOCK TABLE "_s + shopTables + u" IN EXCLUSIVE MODE"_s),
        rule(u"\\bbegin exclusive\\b"_s, u"BEGIN; LOCK TABLE "_s + shopTables + u" IN ACCESS EXCLUSIVE MODE"_s),
    };
    for (const Rule &rule : rules)
        piece.replace(rule.pattern, rule.replacement);
    return piece;
}

/// A trigger that refuses a change, and what it does before.
QString withServersTriggers(QString statements)
{
    static const Rule trigger = rule(u"create trigger (\\w+) (\\w+) (\\w+) on (\\w+) begin (.*)"
                                     "select raise\\(\\w+, ('[^']*')\\); end"_s,
                                     u"CREATE FUNCTION \\1() RETURNS trigger LANGUAGE plpgsql AS $$ BEGIN \\5 "
                                     "RAISE EXCEPTION \\6; END $$; CREATE TRIGGER \\1 \\2 \\3 ON \\4 "
                                     "FOR EACH ROW EXECUTE FUNCTION \\1()"_s);
    return statements.replace(trigger.pattern, trigger.replacement);
}

} // namespace

struct ServerSession::Connection
{
    explicit Connection(const QString &path) : handle(PQconnectdb(path.toUtf8().constData())) {}
    ~Connection() { PQfinish(handle); }
    Connection(const Connection &) = delete;
    Connection &operator=(const Connection &) = delete;

    PGconn *handle;
};

ServerSession::ServerSession(const QString &path) : m_connection(std::make_unique<Connection>(path))
{
    if (!run(QString::fromLatin1(sessionSettings)))
        qFatal("%s: %s", qPrintable(path), qPrintable(m_message));
}

ServerSession::~ServerSession() = default;

bool ServerSession::run(const QString &statements)
{
    return rows(statements).has_value();
}

std::optional<QStringList> ServerSession::rows(const QString &select, Columns columns)
{
    PGconn *handle = m_connection->handle;
    const bool wasIdle = PQtransactionStatus(handle) == PQTRANS_IDLE;
    PGresult *result = PQexec(handle, inServersWords(select).toUtf8().constData());
    const ExecStatusType status = PQresultStatus(result);
    std::optional<QStringList> all;
    if (status == PGRES_TUPLES_OK || status == PGRES_COMMAND_OK || status == PGRES_EMPTY_QUERY)
        all = rowsOf(result, columns == Columns::First ? 1 : PQnfields(result), m_null);
    m_message = QString::fromUtf8(PQerrorMessage(handle)).simplified();
    m_state = QByteArray(PQresultErrorField(result, PG_DIAG_SQLSTATE));
    PQclear(result);
    if (wasIdle && PQtransactionStatus(handle) == PQTRANS_INERROR)
        PQclear(PQexec(handle, "ROLLBACK")); // a transaction that was refused has not begun
    return all;
}

bool ServerSession::hasRefusedAValue() const
{
    constexpr auto otherKind = "42804";
    constexpr auto tooLongForAnIndex = "54000";
    return m_state.startsWith("22") || m_state == otherKind || m_state == tooLongForAnIndex;
}

QString inServersWords(const QString &statements)
{
    static const Rule ofOwnTable =
        rule(u"(\\bfrom Harrowby\\w+\\b[^;]*)\\browid\\b"_s, u"\\1ctid"_s); // which has no identities
    QStringList pieces = withServersTriggers(QString(statements).replace(ofOwnTable.pattern, ofOwnTable.replacement))
                             .split(u'\''); // every other one is of a literal
    for (qsizetype piece = 0; piece < pieces.size(); piece += 2)
        pieces[piece] = translated(pieces.at(piece));
    return pieces.join(u'\'');
}

} // namespace harrowby::test
