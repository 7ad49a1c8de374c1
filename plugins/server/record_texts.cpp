// SPDX-License-Identifier: MIT
#include "plugins/server/record_texts.h"

#include <QRegularExpression>
#include <QStringList>

using namespace Qt::StringLiterals;

namespace harrowby::server {

namespace {

constexpr auto caseless = QRegularExpression::CaseInsensitiveOption;

bool isOwn(const QString &table)
{
    return table.startsWith("Harrowby"_L1, Qt::CaseInsensitive);
}

/// The number of an advisory lock.
QByteArray lockNumber(const QString &table)
{
    return "hashtextextended('records of " + table.toLower().toUtf8() + "', 0)";
}

QByteArray lockFor(const QString &table)
{
    return isOwn(table) ? "select pg_advisory_xact_lock(" + lockNumber(table) + ')'
                        : "lock table harrowby." + table.toUtf8() + " in share row exclusive mode";
}

} // namespace

QList<QByteArray> locksFor(const app::RecordTable &table)
{
    QList<QByteArray> locks = {lockFor(table.name)};
    for (const QString &guarded : table.guarded)
        locks << lockFor(guarded);
    return locks;
}

QList<QByteArray> locksForWriteTo(const QString &table)
{
    if (!isOwn(table))
        return {};
    return {"select pg_advisory_xact_lock_shared(" + lockNumber(table) + ')'};
}

QString changedTable(const QString &statement)
{
    static const QRegularExpression change(u"^\\s*(?:insert\\s+into|update|delete\\s+from)\\s+(\\w+)"_s, caseless);
    return change.match(statement).captured(1);
}

bool addsOneRow(const QString &statement)
{
    static const QRegularExpression oneRow(
        u"^\\s*insert\\s+into\\s+\\w+\\s*\\([^()]*\\)\\s*values\\s*\\((?:[^()]|\\([^()]*\\))*\\)\\s*$"_s, caseless);
    return oneRow.match(statement).hasMatch();
}

std::optional<QString> forRows(const QString &statement, qsizetype rows)
{
    static const QRegularExpression marks(
        u"^\\s*(insert\\s+into\\s+\\w+\\s*\\([^()]*\\)\\s*values\\s*)(\\([?,\\s]*\\))\\s*$"_s, caseless);
    const QRegularExpressionMatch match = marks.match(statement);
    if (!match.hasMatch())
        return {};
    return match.captured(1) + QStringList(rows, match.captured(2)).join(u", "_s);
}

} // namespace harrowby::server
