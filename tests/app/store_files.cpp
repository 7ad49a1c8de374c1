// SPDX-License-Identifier: MIT
#include "tests/app/store_files.h"

#include "app/shop/file_facts.h"
#include "app/shop/store_create.h"
#include "tests/doubles/server_shop.h"

#include <QFile>
#include <QTest>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace harrowby::app::test {

namespace {

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

const auto firstItem = u"INSERT INTO StockList (StockID, StockName, StockCategory, StockCost, StockReorderLevel, "
                       "StockAvailable, StockUse) VALUES ('TEA-0001', 'TEA', 'DRINKS', '2.50', 5, 20, 'Enabled')"_s;

std::optional<SqlError> fillStore(sqlite3 *database)
{
    if (auto error = addAdministrator(database, u"secret"_s))
        return error;
    return runSql(database, firstItem);
}

void runOnServer(const QString &path, const QStringList &statements)
{
    harrowby::test::ServerSession session(ownersAddress(path));
    for (const QString &statement : statements)
        QVERIFY2(session.run(statement), qPrintable(statement + u": "_s + session.message()));
}

void copyIfThere(const QString &from, const QString &to)
{
    QFile::remove(to);
    if (QFile::exists(from))
        QVERIFY2(QFile::copy(from, to), qPrintable(to));
}

} // namespace

QString ownersAddress(QString address)
{
    return address.replace(u"//office@"_s, u"//postgres@"_s);
}

void makeStore(const QString &path)
{
    if (harrowby::test::isOnServer(path))
        return runOnServer(path,
                           {u"INSERT INTO Users VALUES ('ADMINISTRATOR', 'SECRET', 'ADMINISTRATOR', -1, -1, -1, -1, "
                            "-1, -1, -1)"_s,
                            firstItem});
    const auto problem = createStore(path, false, fillStore);
    QVERIFY2(!problem, problem ? qPrintable(problem->text) : "");
}

void runAll(const QString &path, const QStringList &statements)
{
    if (harrowby::test::isOnServer(path))
        return runOnServer(path, statements);
    SqliteDatabase database;
    QVERIFY(!into(database, openDatabase(path, OpenMode::Create)));
    for (const QString &statement : statements) {
        const auto error = runSql(database.get(), statement);
        QVERIFY2(!error, qPrintable(statement + u": "_s + (error ? error->reason : QString())));
    }
}

void loseIndexedRows(const QString &path, const QString &index, const QString &rows)
{
    const auto writable = u"PRAGMA writable_schema = ON"_s;
    const QString ofIndex = u" FROM sqlite_schema WHERE name = '%1'"_s.arg(index);
    runAll(path, {writable, u"CREATE TABLE kept AS SELECT *"_s + ofIndex, u"DELETE"_s + ofIndex});
    runAll(path, {writable, u"DELETE FROM "_s + rows, u"INSERT INTO sqlite_schema SELECT * FROM kept"_s});
}

void makeBigStore(const QString &path)
{
    makeStore(path);
    runAll(path,
           {u"INSERT INTO SysUsage WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 4000) "
            "SELECT printf('line %d of many, long enough to fill pages', i), '', '' FROM n"_s});
}

QStringList column(const QString &path, const QString &select)
{
    if (harrowby::test::isOnServer(path)) {
        harrowby::test::ServerSession session(ownersAddress(path));
        const auto rows = session.rows(select, harrowby::test::ServerSession::Columns::First);
        if (!rows) // a message would be equal to the same one
            qFatal("%s: %s", qPrintable(select), qPrintable(session.message()));
        return *rows;
    }
    SqliteDatabase database;
    if (into(database, openDatabase(path, OpenMode::Write)))
        return {u"cannot be opened"_s};
    QStringList values;
    SqliteStatement query(database.get(), select);
    while (query.next())
        values << query.text(0);
    return query.error() ? QStringList{query.error()->reason} : values;
}

Bytes bytesOf(const QString &path)
{
    return {contentOf(path), contentOf(logFileOf(path)), contentOf(journalOf(path))};
}

void copyAsAfterCrash(const QString &from, const QString &to)
{
    copyIfThere(from, to);
    copyIfThere(logFileOf(from), to + u"-wal"_s);
    copyIfThere(journalOf(from), to + u"-journal"_s);
}

void spoil(const QString &path, qint64 offset, qsizetype length)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadWrite));
    QVERIFY(file.size() >= offset + length);
    QVERIFY(file.seek(offset));
    QCOMPARE(file.write(QByteArray(length, '\x5a')), length);
}

DropRights::DropRights() : m_user(::geteuid())
{
    constexpr uid_t nobody = 65534;
    if (m_user == 0 && ::seteuid(nobody) != 0)
        QFAIL("The test cannot drop its rights");
}

DropRights::~DropRights()
{
    if (::geteuid() != m_user && ::seteuid(m_user) != 0)
        qFatal("The test cannot have its rights back");
}

} // namespace harrowby::app::test
