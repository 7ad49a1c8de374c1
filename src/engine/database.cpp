// SPDX-License-Identifier: MIT
#include "engine/database.h"

#include "basic/private_files.h"

#include <QUrl>

#include <sqlite3.h>

using namespace Qt::StringLiterals;

namespace harrowby {

namespace {

int openFlags(OpenMode mode)
{
    switch (mode) {
    case OpenMode::Read:
        return SQLITE_OPEN_READONLY;
    case OpenMode::ReadFrozen:
        return SQLITE_OPEN_READONLY | SQLITE_OPEN_URI;
    case OpenMode::Write:
        return SQLITE_OPEN_READWRITE;
    case OpenMode::Create:
        break;
    }
    return SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
}

QByteArray openName(const QString &path, OpenMode mode)
{
    if (mode != OpenMode::ReadFrozen)
        return path.toUtf8();
    return "file:" + QUrl::toPercentEncoding(path, "/") + "?immutable=1";
}

/// SQLite would create it with mode 0644. A failure is left to sqlite3_open_v2(), which reports it.
void makeForOwnerAlone(const QString &path)
{
    if (path != u":memory:"_s)
        (void)makePrivateFile(path);
}

} // namespace

void CloseDatabase::operator()(sqlite3 *database) const noexcept
{
    sqlite3_close_v2(database);
}

Result<SqliteDatabase, SqlError> openDatabase(const QString &path, OpenMode mode)
{
    if (mode == OpenMode::Create)
        makeForOwnerAlone(path);
    sqlite3 *raw = nullptr;
    const int code = sqlite3_open_v2(openName(path, mode).constData(), &raw, openFlags(mode), nullptr);
    SqliteDatabase database(raw);
    if (code == SQLITE_OK)
        return database;
    return Unexpected(raw != nullptr ? lastErrorOf(raw) : SqlError{code, u"out of memory"_s});
}

std::optional<SqlError> runSql(sqlite3 *database, const QString &text, const QList<DbValue> &values)
{
    SqliteStatement query(database, text, values);
    while (query.next()) {
    }
    return query.error();
}

QString readText(sqlite3 *database, const QString &text, const QList<DbValue> &values)
{
    SqliteStatement query(database, text, values);
    return query.next() ? query.text(0) : QString();
}

} // namespace harrowby
