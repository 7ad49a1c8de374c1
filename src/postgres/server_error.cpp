// SPDX-License-Identifier: MIT
#include "postgres/server_error.h"

#include <QHash>
#include <QRegularExpression>

#include <libpq-fe.h>

using namespace Qt::StringLiterals;

namespace harrowby::postgres {

namespace {

using Kind = PgError::Kind;

QByteArray field(const pg_result *result, int code)
{
    return PQresultErrorField(result, code);
}

Kind whileConnecting(Kind kind)
{
    if (kind == Kind::Lost)
        return Kind::Starting; // the server was there, and ends
    return kind == Kind::Refused ? Kind::Denied : kind;
}

/// The first line, without the address that libpq has tried. Further ones give advice, such as to do without TLS.
QString withoutAddress(const QByteArray &message)
{
    static const QRegularExpression address(u"^connection to server [^\\n]* failed: "_s);
    return oneLine(message.trimmed().split('\n').constFirst()).remove(address);
}

} // namespace

PgError::Kind kindOf(const QByteArray &sqlState)
{
    static const QHash<QByteArray, Kind> kinds{
        {"25006", Kind::ReadOnly}, {"25P03", Kind::Lost},     {"3D000", Kind::Denied},       {"40P01", Kind::Deadlock},
        {"53100", Kind::Full},     {"53300", Kind::Crowded},  {"55P03", Kind::LockTimedOut}, {"57P01", Kind::Lost},
        {"57P02", Kind::Lost},     {"57P03", Kind::Starting}, {"57P05", Kind::Lost},
    };
    if (sqlState.startsWith("28"))
        return Kind::Denied;
    if (sqlState.startsWith("08"))
        return Kind::Lost;
    return kinds.value(sqlState, Kind::Refused);
}

PgError errorOf(const pg_result *result)
{
    const QByteArray state = field(result, PG_DIAG_SQLSTATE);
    const QByteArray severity = field(result, PG_DIAG_SEVERITY_NONLOCALIZED);
    QString text = oneLine(field(result, PG_DIAG_MESSAGE_PRIMARY));
    if (text.isEmpty())
        text = oneLine(PQresultErrorMessage(result));
    // libpq makes a result of its own, without any field, when the connection breaks.
    const bool ended = state.isEmpty() || severity == "FATAL" || severity == "PANIC" || kindOf(state) == Kind::Lost;
    return {ended ? Kind::Lost : kindOf(state), state, text, ended};
}

PgError connectError(const QByteArray &message, bool duringTls)
{
    // As PQERRORS_VERBOSE has it: "… FATAL:  28P01: password authentication failed". The severity is translated.
    static const QRegularExpression said(u"^(?:.*: )?\\w+:  ([0-9A-Z]{5}): (.*)$"_s,
                                         QRegularExpression::MultilineOption |
                                             QRegularExpression::UseUnicodePropertiesOption);
    const QRegularExpressionMatch match = said.match(QString::fromUtf8(message));
    if (!match.hasMatch())
        return {duringTls ? Kind::NotTrusted : Kind::CannotConnect, {}, withoutAddress(message)};
    const QByteArray state = match.captured(1).toLatin1();
    return {whileConnecting(kindOf(state)), state, match.captured(2)};
}

PgError connectError(const pg_result *result)
{
    PgError error = errorOf(result);
    error.kind = error.sqlState.isEmpty() ? Kind::CannotConnect : whileConnecting(kindOf(error.sqlState));
    error.mayBeDone = false;
    if (error.text.isEmpty())
        error.text = u"the server answers otherwise than it was asked"_s;
    return error;
}

PgError lostError(const QByteArray &message, bool wasSent)
{
    QString text = oneLine(message);
    if (text.isEmpty())
        text = u"The connection to the server broke"_s;
    return {Kind::Lost, {}, text, wasSent};
}

bool saysNotConfirmed(const pg_result *notice)
{
    return field(notice, PG_DIAG_SOURCE_FUNCTION) == "SyncRepWaitForLSN";
}

QString oneLine(const QByteArray &message)
{
    return QString::fromUtf8(message).simplified();
}

} // namespace harrowby::postgres
