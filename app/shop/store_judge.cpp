// SPDX-License-Identifier: MIT
#include "app/shop/store_judge.h"

#include "app/shop/busy_wait.h"
#include "app/shop/file_facts.h"
#include "app/shop/left_log.h"
#include "app/shop/quick_check.h"
#include "app/shop/schema.h"
#include "app/shop/store_fit.h"
#include "basic/logging.h"

#include <QFile>

#include <sqlite3.h>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

using Problem = std::optional<StoreProblem>;

constexpr int headerSize = 100;

QByteArray readHeader(const QString &path)
{
    // Before SQLite opens the file: opening and closing it afterwards would drop SQLite's POSIX locks.
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.read(headerSize) : QByteArray();
}

bool isDatabaseHeader(const QByteArray &header)
{
    return header.size() == headerSize && header.startsWith(QByteArrayView("SQLite format 3\0", 16));
}

bool usesWriteAheadLog(const QByteArray &header)
{
    return header.at(18) == 2 && header.at(19) == 2;
}

/// A store that uses a log but has none beside it was closed cleanly and nobody has it open. Opened in the usual
/// way even for reading, SQLite would put an empty log there.
OpenMode gentlestMode(const QString &path, const QByteArray &header)
{
    const bool closed = usesWriteAheadLog(header) && !QFile::exists(logFileOf(path)) && !QFile::exists(journalOf(path));
    return closed ? OpenMode::ReadFrozen : OpenMode::Read;
}

/// An empty log belongs to no file in particular.
bool hasForeignLog(const QString &path)
{
    const QString log = logFileOf(path);
    return QFile(log).size() > 0 && logIsOfAnotherFile(QFile::encodeName(path), QFile::encodeName(log));
}

Problem judgeTable(sqlite3 *database, const StoreTable &table, const QString &path)
{
    SqliteStatement found(database, u"SELECT 1 FROM sqlite_master WHERE type = 'table' AND name = ?1 COLLATE NOCASE"_s,
                          {table.name});
    const bool exists = found.next();
    if (found.error())
        return engineProblem(*found.error(), path);
    if (!exists)
        return storeProblem(ProblemKind::MissingTable, path, table.name);

    QStringList present;
    // Generated columns too: a reader does not mind them.
    SqliteStatement columns(database, u"SELECT name FROM pragma_table_xinfo(?1) WHERE hidden <> 1"_s, {table.name});
    while (columns.next())
        present << columns.text(0);
    if (columns.error())
        return engineProblem(*columns.error(), path);
    for (const QString &column : table.columns) {
        if (!present.contains(column, Qt::CaseInsensitive))
            return storeProblem(ProblemKind::MissingColumn, path, table.name + u'.' + column);
    }
    return {};
}

Problem judgeSoundness(sqlite3 *database, const QString &path, std::chrono::milliseconds limit)
{
    const QuickCheck check = quickCheck(database, limit);
    if (check.result == QuickCheck::Result::Failed)
        return engineProblem(check.error, path);
    if (check.result == QuickCheck::Result::Damaged)
        return storeProblem(ProblemKind::Damaged, path, check.error.reason);
    if (check.result == QuickCheck::Result::Unfinished)
        qCWarning(lcStore) << "The check of" << path << "was not finished in time; the part that was seen is sound.";
    return {};
}

Problem judgeContent(sqlite3 *database, const QString &path, std::chrono::milliseconds checkLimit)
{
    for (const StoreTable &table : storeTables()) {
        if (auto problem = judgeTable(database, table, path))
            return problem;
    }
    if (auto problem = judgeFit(database, path))
        return problem;
    return judgeSoundness(database, path, checkLimit);
}

/// The first read: it meets locks, and what a crash has left behind.
Result<SqliteDatabase, SqlError> openForJudging(const QString &path, OpenMode mode, BusyWait &wait)
{
    auto database = openDatabase(path, mode);
    if (!database)
        return database;
    wait.attach(database->get());
    if (const auto error = runSql(database->get(), u"SELECT count(*) FROM sqlite_master"_s))
        return Unexpected(*error);
    return database;
}

} // namespace

Result<SqliteDatabase, StoreProblem> openJudged(const QString &path, BusyWait &wait,
                                                std::chrono::milliseconds checkLimit)
{
    const QByteArray header = readHeader(path);
    if (header.isEmpty())
        return Unexpected(storeProblem(ProblemKind::Empty, path));
    if (!isDatabaseHeader(header))
        return Unexpected(storeProblem(ProblemKind::NoDatabase, path));
    if (hasForeignLog(path))
        return Unexpected(storeProblem(ProblemKind::ForeignLog, path, logFileOf(path)));

    auto database = openForJudging(path, gentlestMode(path, header), wait);
    // A crash has left a journal. Only SQLite may judge it, and it needs to write to do so.
    if (!database && database.error().code == SQLITE_READONLY)
        database = openForJudging(path, OpenMode::Write, wait);
    if (!database)
        return Unexpected(engineProblem(database.error(), path));
    if (auto problem = judgeContent(database->get(), path, checkLimit))
        return Unexpected(*std::move(problem));
    return *std::move(database);
}

std::optional<StoreProblem> judgeStore(const QString &path, BusyWait &wait, std::chrono::milliseconds checkLimit)
{
    if (auto problem = judgePlace(path))
        return problem;
    const auto judged = openJudged(path, wait, checkLimit);
    return judged ? std::nullopt : std::optional(judged.error());
}

std::optional<StoreProblem> judgeNewStore(const QString &path, bool makeFolder)
{
    for (const QString &log : {logFileOf(path), journalOf(path)}) {
        if (QFile(log).size() > 0)
            return storeProblem(ProblemKind::LeftOverLog, log, path);
    }
    return judgeNewPlace(path, makeFolder);
}

} // namespace harrowby::app
