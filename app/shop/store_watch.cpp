// SPDX-License-Identifier: MIT
#include "app/shop/store_watch.h"

#include "engine/database.h"

#include <QFile>
#include <QFileInfo>

#include <sqlite3.h>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

FileId idOf(const QByteArray &path)
{
    const auto facts = factsOf(path);
    return facts ? facts->id : FileId();
}

/// Part of a header.
QByteArrayView part(const QByteArray &header, qsizetype from, qsizetype length)
{
    return QByteArrayView(header).sliced(from, length);
}

} // namespace

StoreWatch::StoreWatch(sqlite3 *database, const QString &path) :
    m_handle(database), m_path(QFile::encodeName(QFileInfo(path).absoluteFilePath())),
    m_filePath(sqlite3_db_filename(database, "main")), m_timeCounts(tellsChangesAtOnce(m_filePath)),
    m_file(idOf(m_filePath))
{
    // Reading opens the log.
    (void)readText(database, u"SELECT count(*) FROM sqlite_master"_s);
    if (readText(database, u"PRAGMA journal_mode"_s) == u"wal"_s)
        followLog();
    m_content = contentNow();
}

void StoreWatch::followLog()
{
    if (m_hasLog)
        return;
    m_log = idOf(logPath());
    m_logIndex = idOf(logIndexPath());
    m_hasLog = true;
    m_content = contentNow();
}

std::int64_t StoreWatch::logSize() const
{
    const auto facts = factsOf(logPath());
    return facts ? facts->size : 0;
}

StoreWatch::Finding StoreWatch::check()
{
    const LogProgress before = logNow();
    FileFacts facts;
    if (const Finding finding = checkPath(facts); finding != Finding::Fine)
        return finding;
    if (isForeign(contentSince(before, facts)))
        return Finding::Overwritten;
    if (m_hasLog && (idOf(logPath()) != m_log || idOf(logIndexPath()) != m_logIndex))
        return Finding::LogGone;
    return Finding::Fine;
}

StoreWatch::Finding StoreWatch::checkPath(FileFacts &facts) const
{
    for (const QByteArray &path : {m_path, m_filePath}) {
        const auto found = factsOf(path);
        if (!found)
            return Finding::PathGone;
        if (found->id != m_file)
            return Finding::PathTaken;
        facts = *found;
        if (m_path == m_filePath)
            break;
    }
    return m_handle.hasMoved() ? Finding::PathGone : Finding::Fine;
}

FileFacts StoreWatch::factsOfOpened() const
{
    const auto facts = factsOf(m_filePath);
    if (facts && facts->id == m_file)
        return *facts;
    const auto opened = openFileOf(m_file);
    return opened ? opened->facts : m_content.facts;
}

LogProgress StoreWatch::logNow() const
{
    return m_hasLog ? m_handle.logProgress().value_or(LogProgress()) : LogProgress();
}

StoreWatch::Content StoreWatch::contentNow() const
{
    const LogProgress before = logNow();
    return contentSince(before, factsOfOpened());
}

/// Precondition: `before` was taken before `facts`, both just now; only then a change made by a checkpoint is
/// recognised.
StoreWatch::Content StoreWatch::contentSince(const LogProgress &before, const FileFacts &facts) const
{
    Content now;
    now.facts = facts;
    now.header = m_handle.header();
    now.log = logNow();
    now.isSettled = before == now.log && !now.log.isMoving();
    return now;
}

/// With a write-ahead log SQLite writes into the file only by checkpoints, which the wal-index counts.
bool StoreWatch::isForeign(Content now)
{
    if (!bearsOurMarks(now.header))
        return true;
    if (!m_hasLog || !now.isSettled)
        return false;
    const bool logWasMoved = !m_content.isSettled || now.log != m_content.log;
    if (!logWasMoved && !isUnchanged(now))
        return true;
    m_content = std::move(now);
    return false;
}

/// What no statement changes: that it is a database, the size of its pages, with a log the way of writing, and how
/// texts are encoded.
bool StoreWatch::bearsOurMarks(const QByteArray &header) const
{
    if (header.isEmpty())
        return false;
    const QByteArray &ours = m_content.header;
    if (part(header, 0, 18) != part(ours, 0, 18) || part(header, 56, 4) != part(ours, 56, 4))
        return false;
    return !m_hasLog || part(header, 18, 2) == QByteArrayView("\2\2", 2);
}

bool StoreWatch::isUnchanged(const Content &now) const
{
    if (now.header != m_content.header || now.facts.size != m_content.facts.size)
        return false;
    return !m_timeCounts || now.facts.modified == m_content.facts.modified;
}

} // namespace harrowby::app
