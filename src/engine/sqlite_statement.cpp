// SPDX-License-Identifier: MIT
#include "engine/sqlite_statement.h"

#include "engine/lost_files.h"

#include <sqlite3.h>

#include <algorithm>

namespace harrowby {

namespace {

using namespace Qt::StringLiterals;

using Purpose = SqliteStatement::Purpose;

/// Checked on the text, before sqlite3_prepare: some pragmas take effect while they are prepared.
bool beginsLike(const QString &text, Purpose purpose)
{
    if (purpose == Purpose::Any)
        return true;
    static const QStringList selecting{u"select"_s, u"with"_s, u"values"_s};
    static const QStringList changing{u"insert"_s, u"update"_s, u"delete"_s, u"replace"_s, u"with"_s};
    const QString trimmed = text.trimmed();
    const auto end = std::find_if_not(trimmed.begin(), trimmed.end(), [](QChar c) { return c.isLetter(); });
    const QString word = trimmed.first(end - trimmed.begin());
    return (purpose == Purpose::Select ? selecting : changing).contains(word, Qt::CaseInsensitive);
}

QString wrongPurpose(Purpose purpose)
{
    return purpose == Purpose::Select ? u"the statement is no SELECT"_s
                                      : u"the statement is no UPDATE, INSERT or DELETE"_s;
}

/// Whether only blanks and semicolons follow. SQLite stops reading at a NUL, so what follows one is found here too.
bool endsThere(const char *tail, const char *end)
{
    return std::all_of(tail, end, [](char c) { return QByteArrayView(" \t\r\n\f;").contains(c); });
}

/// A column of the current row. Holds the connection's mutex, which SQLite would otherwise take once each for type,
/// value and length.
class HeldColumn
{
public:
    HeldColumn(sqlite3 *database, sqlite3_stmt *statement, int column) : m_mutex(sqlite3_db_mutex(database))
    {
        sqlite3_mutex_enter(m_mutex);
        m_value = sqlite3_column_value(statement, column);
    }
    ~HeldColumn() { sqlite3_mutex_leave(m_mutex); }
    HeldColumn(const HeldColumn &) = delete;
    HeldColumn &operator=(const HeldColumn &) = delete;

    [[nodiscard]] sqlite3_value *value() const { return m_value; }
    [[nodiscard]] int type() const { return sqlite3_value_type(m_value); }
    [[nodiscard]] QByteArrayView text() const
    {
        // Text first: asking for it may convert, and the length is that of the converted text.
        const auto *text = reinterpret_cast<const char *>(sqlite3_value_text(m_value));
        return {text, text ? sqlite3_value_bytes(m_value) : 0};
    }

private:
    sqlite3_mutex *m_mutex;
    sqlite3_value *m_value;
};

/// Bytes of any length: SQLite itself refuses what is too long for it. They are copied.
int bindBytes(sqlite3_stmt *statement, int parameter, const QByteArray &bytes)
{
    return sqlite3_bind_blob64(statement, parameter, bytes.constData(), static_cast<sqlite3_uint64>(bytes.size()),
                               SQLITE_TRANSIENT);
}

int bindText(sqlite3_stmt *statement, int parameter, const QByteArray &utf8)
{
    return sqlite3_bind_text64(statement, parameter, utf8.constData(), static_cast<sqlite3_uint64>(utf8.size()),
                               SQLITE_TRANSIENT, SQLITE_UTF8);
}

} // namespace

void SqliteStatement::Finalize::operator()(sqlite3_stmt *statement) const
{
    sqlite3_finalize(statement);
}

SqliteStatement::SqliteStatement(sqlite3 *database, const QString &text, Purpose purpose) : m_database(database)
{
    if (!m_database)
        refuse(u"there is no open database"_s);
    else if (!beginsLike(text, purpose))
        refuse(wrongPurpose(purpose));
    else
        prepare(text.toUtf8(), purpose);
}

SqliteStatement::SqliteStatement(sqlite3 *database, const QString &text, const QList<DbValue> &values) :
    SqliteStatement(database, text, Purpose::Any)
{
    int parameter = 0;
    for (const DbValue &value : values)
        bind(++parameter, value);
}

void SqliteStatement::prepare(const QByteArray &sql, Purpose purpose)
{
    sqlite3_stmt *statement = nullptr;
    const char *tail = nullptr;
    const int code = sqlite3_prepare_v2(m_database, sql.constData(), static_cast<int>(sql.size()), &statement, &tail);
    m_statement.reset(statement);
    if (code != SQLITE_OK)
        failAsEngineSays();
    else if (!endsThere(tail, sql.constData() + sql.size()))
        refuse(u"there is more than one statement in the text"_s);
    else if (!serves(purpose))
        refuse(wrongPurpose(purpose));
}

bool SqliteStatement::serves(Purpose purpose) const
{
    if (purpose == Purpose::Any)
        return true;
    const bool isReadOnly = sqlite3_stmt_readonly(m_statement.get()) != 0;
    return purpose == Purpose::Select ? isReadOnly && sqlite3_column_count(m_statement.get()) > 0 : !isReadOnly;
}

void SqliteStatement::refuse(const QString &reason)
{
    m_error = SqlError{0, reason};
    m_extendedCode = 0;
}

void SqliteStatement::bind(int parameter, const DbValue &value)
{
    if (hasFailed())
        return;
    sqlite3_stmt *statement = m_statement.get();
    int code = SQLITE_OK;
    if (const auto *integer = std::get_if<std::int64_t>(&value))
        code = sqlite3_bind_int64(statement, parameter, *integer);
    else if (const auto *real = std::get_if<double>(&value))
        code = sqlite3_bind_double(statement, parameter, *real);
    else if (const auto *text = std::get_if<QString>(&value))
        code = bindText(statement, parameter, text->toUtf8());
    else if (const auto *bytes = std::get_if<QByteArray>(&value))
        code = bindBytes(statement, parameter, *bytes);
    else
        code = sqlite3_bind_null(statement, parameter);
    if (code != SQLITE_OK)
        failAsEngineSays();
}

DbCursor::Step SqliteStatement::step()
{
    if (hasFailed())
        return DbCursor::Step::Failed;
    if (m_last != DbCursor::Step::Row) // stepping again would start over
        return m_last;
    switch (sqlite3_step(m_statement.get())) {
    case SQLITE_ROW:
        break;
    case SQLITE_DONE:
        m_last = DbCursor::Step::Done;
        break;
    default:
        m_last = DbCursor::Step::Failed;
        failAsEngineSays();
    }
    return m_last;
}

void SqliteStatement::beginAgain()
{
    if (hasFailed())
        return;
    sqlite3_reset(m_statement.get()); // the failure that it would repeat has been noted
    m_last = DbCursor::Step::Row;
}

QStringList SqliteStatement::columnNames() const
{
    QStringList names;
    for (int i = 0, count = sqlite3_column_count(m_statement.get()); i < count; ++i)
        names.append(QString::fromUtf8(sqlite3_column_name(m_statement.get(), i)));
    return names;
}

DbValue SqliteStatement::value(int column) const
{
    const HeldColumn held(m_database, m_statement.get(), column);
    switch (held.type()) {
    case SQLITE_INTEGER:
        return static_cast<std::int64_t>(sqlite3_value_int64(held.value()));
    case SQLITE_FLOAT:
        return sqlite3_value_double(held.value());
    case SQLITE_TEXT:
        return QString::fromUtf8(held.text());
    case SQLITE_BLOB: {
        const auto *bytes = static_cast<const char *>(sqlite3_value_blob(held.value()));
        return bytes ? QByteArray(bytes, sqlite3_value_bytes(held.value())) : QByteArray("");
    }
    default:
        return {};
    }
}

QString SqliteStatement::text(int column) const
{
    // Text first: asking for it may convert, and the length is that of the converted text.
    const unsigned char *utf8 = sqlite3_column_text(m_statement.get(), column);
    return QString::fromUtf8(reinterpret_cast<const char *>(utf8), sqlite3_column_bytes(m_statement.get(), column));
}

std::int64_t SqliteStatement::number(int column) const
{
    return sqlite3_column_int64(m_statement.get(), column);
}

std::optional<QByteArrayView> SqliteStatement::utf8(int column) const
{
    const HeldColumn held(m_database, m_statement.get(), column);
    return held.type() == SQLITE_TEXT ? std::optional(held.text()) : std::nullopt;
}

void SqliteStatement::failAsEngineSays()
{
    m_error = lastErrorOf(m_database);
    m_extendedCode = sqlite3_extended_errcode(m_database);
}

SqlError lastErrorOf(sqlite3 *database)
{
    if (const QString loss = lossOf(database); !loss.isEmpty())
        return {SQLITE_READONLY_DBMOVED, loss};
    return {sqlite3_errcode(database) & 0xff, QString::fromUtf8(sqlite3_errmsg(database))};
}

} // namespace harrowby
