// SPDX-License-Identifier: MIT
#include "tests/doubles/database.h"

#include "tests/doubles/server_shop.h"

#include <sqlite3.h>

using namespace Qt::StringLiterals;

namespace harrowby::test {

Database::Database(const QString &path, bool readOnly)
{
    if (isOnServer(path)) {
        m_session = std::make_unique<ServerSession>(path);
        if (readOnly)
            run(u"SET default_transaction_read_only = on"_s);
        return;
    }
    const int flags = readOnly ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
    sqlite3_open_v2(path.toUtf8().constData(), &m_handle, flags, nullptr);
}

Database::~Database()
{
    sqlite3_close(m_handle);
}

bool Database::run(const QString &statements)
{
    if (m_session)
        return m_session->run(statements);
    return sqlite3_exec(m_handle, statements.toUtf8().constData(), nullptr, nullptr, nullptr) == SQLITE_OK;
}

QStringList Database::rows(const QString &select) const
{
    const QStringList failed{u"(failed)"_s};
    if (m_session)
        return m_session->rows(select).value_or(failed);
    sqlite3_stmt *statement = nullptr;
    if (sqlite3_prepare_v2(m_handle, select.toUtf8().constData(), -1, &statement, nullptr) != SQLITE_OK)
        return failed;
    QStringList all;
    int step = SQLITE_ROW;
    while ((step = sqlite3_step(statement)) == SQLITE_ROW) {
        QStringList row;
        for (int column = 0; column < sqlite3_column_count(statement); ++column)
            row << QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(statement, column)));
        all << row.join(u'|');
    }
    sqlite3_finalize(statement);
    return step == SQLITE_DONE ? all : failed;
}

QString Database::integrity() const
{
    return m_session ? u"ok"_s : rows(u"PRAGMA integrity_check"_s).join(u' ');
}

QStringList Database::everything() const
{
    QStringList all;
    for (const QString &table : rows(u"SELECT name FROM sqlite_schema WHERE type = 'table' ORDER BY name"_s)) {
        QStringList columns;
        for (const QString &column : rows(u"SELECT name FROM pragma_table_info('%1')"_s.arg(table)))
            columns << u"typeof(%1) || ':' || quote(%1)"_s.arg(column);
        for (const QString &row : rows(u"SELECT rowid, %1 FROM %2 ORDER BY rowid"_s.arg(columns.join(u','), table)))
            all << table + u' ' + row;
    }
    return all;
}

bool Database::copy(const Database &from)
{
    sqlite3_backup *backup = sqlite3_backup_init(m_handle, "main", from.m_handle, "main");
    if (backup == nullptr)
        return false;
    const bool done = sqlite3_backup_step(backup, -1) == SQLITE_DONE;
    return sqlite3_backup_finish(backup) == SQLITE_OK && done;
}

} // namespace harrowby::test
