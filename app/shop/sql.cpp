// SPDX-License-Identifier: MIT
#include "app/shop/sql.h"

#include "app/shop/store_loss.h"

#include <QFile>
#include <QUrl>

#include <sqlite3.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

SqlError lastError(sqlite3 *database)
{
    if (const QString loss = lossOf(database); !loss.isEmpty())
        return {SQLITE_READONLY_DBMOVED, loss};
    return {sqlite3_errcode(database) & 0xff, QString::fromUtf8(sqlite3_errmsg(database))};
}

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

/// SQLite would let others read a new file. What is there already is never opened: closing it again would drop the
/// locks that this program has on it.
void makeForOwnerAlone(const QString &path)
{
    if (path == u":memory:"_s)
        return;
    const int descriptor =
        ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (descriptor >= 0)
        ::close(descriptor);
}

} // namespace

void CloseDatabase::operator()(sqlite3 *database) const noexcept
{
    sqlite3_close_v2(database);
}

std::optional<SqlError> openDatabase(const QString &path, OpenMode mode, Database &database)
{
    if (mode == OpenMode::Create)
        makeForOwnerAlone(path);
    sqlite3 *raw = nullptr;
    const int code = sqlite3_open_v2(openName(path, mode).constData(), &raw, openFlags(mode), nullptr);
    database.reset(raw);
    if (code == SQLITE_OK)
        return {};
    return raw != nullptr ? lastError(raw) : SqlError{code, u"out of memory"_s};
}

SqlQuery::SqlQuery(sqlite3 *database, const QString &text, const QVariantList &values) : m_database(database)
{
    const QByteArray sql = text.toUtf8();
    if (sqlite3_prepare_v2(database, sql.constData(), static_cast<int>(sql.size()), &m_statement, nullptr) != SQLITE_OK)
        noteError();
    int position = 0;
    for (const QVariant &value : values)
        bind(++position, value);
}

SqlQuery::~SqlQuery()
{
    sqlite3_finalize(m_statement);
}

void SqlQuery::bind(int position, const QVariant &value)
{
    if (m_statement == nullptr)
        return;
    int code = SQLITE_OK;
    if (value.isNull()) {
        code = sqlite3_bind_null(m_statement, position);
    } else if (value.typeId() == QMetaType::Double) {
        code = sqlite3_bind_double(m_statement, position, value.toDouble());
    } else if (value.typeId() == QMetaType::QString) {
        const QByteArray utf8 = value.toString().toUtf8();
        code = sqlite3_bind_text64(m_statement, position, utf8.constData(), static_cast<sqlite3_uint64>(utf8.size()),
                                   SQLITE_TRANSIENT, SQLITE_UTF8);
    } else {
        code = sqlite3_bind_int64(m_statement, position, value.toLongLong());
    }
    if (code != SQLITE_OK)
        noteError();
}

void SqlQuery::noteError()
{
    m_error = lastError(m_database);
}

bool SqlQuery::next()
{
    if (m_error || m_statement == nullptr)
        return false;
    const int code = sqlite3_step(m_statement);
    if (code != SQLITE_ROW && code != SQLITE_DONE)
        noteError();
    return code == SQLITE_ROW;
}

QString SqlQuery::text(int column) const
{
    const unsigned char *utf8 = sqlite3_column_text(m_statement, column);
    return QString::fromUtf8(reinterpret_cast<const char *>(utf8), sqlite3_column_bytes(m_statement, column));
}

qint64 SqlQuery::number(int column) const
{
    return sqlite3_column_int64(m_statement, column);
}

DbValue SqlQuery::value(int column) const
{
    switch (sqlite3_column_type(m_statement, column)) {
    case SQLITE_INTEGER:
        return static_cast<std::int64_t>(number(column));
    case SQLITE_FLOAT:
        return sqlite3_column_double(m_statement, column);
    case SQLITE_TEXT:
        return text(column);
    case SQLITE_BLOB:
        return QByteArray(static_cast<const char *>(sqlite3_column_blob(m_statement, column)),
                          sqlite3_column_bytes(m_statement, column));
    default:
        return {};
    }
}

std::optional<SqlError> runSql(sqlite3 *database, const QString &text, const QVariantList &values)
{
    SqlQuery query(database, text, values);
    while (query.next()) {
    }
    return query.error();
}

QString readText(sqlite3 *database, const QString &text, const QVariantList &values)
{
    SqlQuery query(database, text, values);
    return query.next() ? query.text(0) : QString();
}

} // namespace harrowby::app
