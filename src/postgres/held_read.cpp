// SPDX-License-Identifier: MIT
#include "postgres/held_read.h"

#include "postgres/schema.h"
#include "postgres/storable.h"

namespace harrowby::postgres {

namespace {

using namespace Qt::StringLiterals;

/// The row of the result that has this identity; negative when there is none.
int rowOf(const PgResult &rows, int identity, DbRowId row)
{
    for (int i = 0; identity >= 0 && i < rows.rowCount(); ++i) {
        if (rows.text(i, identity).toLongLong() == row)
            return i;
    }
    return -1;
}

QString sameValue(const PgResult &rows, int row, int column)
{
    const QString name = quotedName(QString::fromUtf8(rows.columnName(column)));
    if (rows.isNull(row, column))
        return name + u" is null"_s;
    return name + u" = "_s + literal(QString::fromUtf8(rows.text(row, column))); // becomes of the column's type
}

} // namespace

QByteArray HeldRead::advisoryLock() const
{
    return (u"select pg_advisory_xact_lock(hashtextextended("_s + literal(select) + u", 0)); "_s).toUtf8();
}

QByteArray HeldRead::reading(const QString &serverSelect) const
{
    if (write == HeldWrite::Change)
        return "begin; " + serverSelect.toUtf8() + " for update";
    return "begin; " + advisoryLock() + serverSelect.toUtf8();
}

QByteArray HeldRead::conditionOfUpdate(const QString &table, DbRowId row) const
{
    const int identity = rows ? rows->columnCount() - 1 : -1;
    const bool hasIdentity = identity >= 0 && rows->columnName(identity) == identityColumn;
    const int found = hasIdentity ? rowOf(*rows, identity, row) : -1;
    if (found < 0)
        return {};
    QStringList same{QLatin1StringView(identityColumn) + u" = "_s + QString::number(row)};
    for (int column = 0; column < identity; ++column)
        same << sameValue(*rows, found, column);
    return (u"select harrowby.require(exists(select from "_s + quotedName(table) + u" where "_s +
            same.join(u" and "_s) + u" for update)); "_s)
        .toUtf8();
}

QByteArray HeldRead::conditionOfInsert(const QString &counting) const
{
    if (!rows)
        return {};
    return advisoryLock() + "select harrowby.require((" + counting.toUtf8() +
           ") = " + QByteArray::number(rows->rowCount()) + "); ";
}

} // namespace harrowby::postgres
