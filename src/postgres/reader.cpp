// SPDX-License-Identifier: MIT
#include "postgres/reader.h"

#include "postgres/postgres_cursor.h"

#include <utility>

namespace harrowby::postgres {

namespace {

using namespace Qt::StringLiterals;

/// Everything between them sees the same moment.
constexpr char beginSnapshot[] = "begin transaction isolation level repeatable read read only; ";
constexpr char endSnapshot[] = "; commit";

bool isLimited(const QString &text)
{
    return text.contains(" limit "_L1, Qt::CaseInsensitive);
}

/// Whether nothing but reading its rows tells how many there are.
bool isFiltered(const QString &text)
{
    return text.contains(" where "_L1, Qt::CaseInsensitive);
}

/// A text is looked for in every item, which takes far longer than to hold those that are found.
bool isSearch(const QString &text)
{
    return text.contains("harrowby_finds("_L1) || text.contains(" like "_L1, Qt::CaseInsensitive);
}

/// What a counting SELECT has yielded.
std::int64_t countIn(const PgResult &result)
{
    return result.rowCount() == 1 ? result.text(0, 0).toLongLong() : 0;
}

std::shared_ptr<const PgResult> shared(PgResult &&result)
{
    return std::make_shared<const PgResult>(std::move(result));
}

} // namespace

Reader::Reader(ServerAccess &access, Report report, std::function<bool()> findsAnywhere) :
    m_access(access), m_report(std::move(report)), m_findsAnywhere(std::move(findsAnywhere))
{
}

/// To ask costs whoever answers a statement of his own.
Search Reader::searchOf(const QString &select) const
{
    const bool isAnywhere = m_findsAnywhere && searches(select) && m_findsAnywhere();
    return isAnywhere ? Search::Anywhere : Search::AsWritten;
}

void Reader::refuse(const QString &select, const QString &reason)
{
    m_report(select, {PgError::Kind::Refused, {}, reason, false});
}

std::optional<QString> Reader::serverText(const QString &select, Search search)
{
    ServerText text = selectText(select, search);
    if (text)
        return *std::move(text);
    refuse(select, text.error());
    return {};
}

std::optional<PgResults> Reader::run(const QString &select, const QByteArray &statements)
{
    auto results = m_access.read(statements);
    if (results)
        return *std::move(results);
    m_report(select, results.error());
    return {};
}

/// Null when it failed.
Reader::Rows Reader::rows(const QString &select)
{
    const std::optional<QString> text = serverText(select, searchOf(select));
    return text ? rowsOf(select, *text) : nullptr;
}

Reader::Rows Reader::rowsOf(const QString &select, const QString &text)
{
    auto results = run(select, text.toUtf8());
    return results ? shared(std::move(results->back())) : nullptr;
}

std::unique_ptr<DbCursor> Reader::whole(const QString &select)
{
    if (select == m_latestFirst)
        m_habits.noteAllWanted(select);
    m_latestFirst.clear();
    Rows found = rows(select);
    return found ? std::make_unique<HeldRowsCursor>(std::move(found)) : nullptr;
}

std::unique_ptr<DbCursor> Reader::first(const QString &select)
{
    m_latestFirst.clear();
    const Search search = searchOf(select);
    const std::optional<QString> text = serverText(select, search);
    if (!text)
        return nullptr;
    if (!isLimited(*text) && !m_habits.isReadWhole(select))
        return firstAndCount(select, *text, search);
    auto results = run(select, text->toUtf8());
    if (!results)
        return nullptr;
    Rows found = shared(std::move(results->back()));
    const std::int64_t count = found->rowCount();
    return std::make_unique<HeldRowsCursor>(std::move(found), [this, select, count](std::int64_t read) {
        if (count > ReadingHabits::firstRows && read <= ReadingHabits::firstRows + 1)
            m_habits.noteRestUnwanted(select);
    });
}

std::unique_ptr<DbCursor> Reader::firstAndCount(const QString &select, const QString &text, Search search)
{
    const ServerText counting = countText(select, search);
    if (!counting)
        return refuse(select, counting.error()), nullptr;
    // One more than the first ones, as a cursor is asked for the row after them.
    const QByteArray statements = beginSnapshot + counting->toUtf8() + "; select * from (" + text.toUtf8() +
                                  ") as first_rows limit " + QByteArray::number(ReadingHabits::firstRows + 1) +
                                  endSnapshot;
    auto results = run(select, statements);
    if (!results)
        return nullptr;
    if (results->size() != 4) // begin, count, rows, commit
        return refuse(select, u"the server has answered otherwise than it was asked"_s), nullptr;
    const std::int64_t count = countIn((*results)[1]);
    Rows found = shared(std::move((*results)[2]));
    m_habits.noteCount(select, count);
    if (count <= found->rowCount())
        return std::make_unique<HeldRowsCursor>(std::move(found));
    m_latestFirst = select;
    return std::make_unique<HeldRowsCursor>(std::move(found), count, [this, select] {
        m_habits.noteAllWanted(select);
        return rows(select);
    });
}

/// Connected, on the server that the till works with. Null when none is to be had: then a list is read whole.
std::shared_ptr<PgSession> Reader::sessionToWalk()
{
    if (m_access.session().isLost())
        return nullptr;
    std::shared_ptr<PgSession> session = m_walks.take();
    // A server that was replaced may live on, with the rows of then.
    const auto isThere = [&] {
        return !session->isLost() && !session->hasEnded() && session->server() == m_access.session().server();
    };
    if (!session || isThere())
        return session;
    return session->connect(m_access.targetBeside(), m_access.waits()) ? session : nullptr;
}

/// One result, which is its own count.
std::unique_ptr<DbCursor> Reader::shortList(const QString &select, const QString &text)
{
    m_latestFirst.clear();
    Rows found = rowsOf(select, text);
    if (!found)
        return nullptr;
    m_habits.noteList(select, found->rowCount());
    return std::make_unique<HeldRowsCursor>(std::move(found));
}

std::unique_ptr<DbCursor> Reader::walk(const QString &select, bool isCounted)
{
    m_access.time().beginStatement();
    const Search search = searchOf(select);
    const std::optional<QString> text = serverText(select, search);
    if (text && isCounted && isFiltered(*text) && (isSearch(*text) || m_habits.isShortList(select)))
        return shortList(select, *text);
    const ServerText counting = isCounted ? countText(select, search) : ServerText(QString());
    std::shared_ptr<PgSession> session = text && counting ? sessionToWalk() : nullptr;
    if (!session)
        return text ? whole(select) : nullptr;
    const QByteArray count = isCounted ? counting->toUtf8() + "; " : QByteArray();
    auto rows = session->walk(beginSnapshot + count + text->toUtf8() + endSnapshot, m_access.budget());
    if (!rows)
        return walkElsewhere(select, rows.error());
    std::optional<std::int64_t> found;
    if (isCounted && rows->next() == PgRows::Step::Row) {
        found = rows->text(0).toLongLong();
        m_habits.noteList(select, *found);
        static_cast<void>(rows->next());
        static_cast<void>(rows->nextSelect());
    }
    if (rows->error())
        return m_report(select, *rows->error()), nullptr;
    return std::make_unique<WalkCursor>(std::move(session), *std::move(rows), found,
                                        [this, select](const PgError &error) { m_report(select, error); });
}

std::unique_ptr<DbCursor> Reader::counted(const QString &select)
{
    m_latestFirst.clear();
    const std::optional<std::int64_t> rows = count(select);
    return rows ? std::make_unique<CountCursor>(*rows, [this, select] { return whole(select); }) : nullptr;
}

/// The till's own session may be better off than the one that has broken; a server that says nothing says nothing
/// there.
std::unique_ptr<DbCursor> Reader::walkElsewhere(const QString &select, const PgError &error)
{
    m_access.time().noteTrouble();
    if (error.kind == PgError::Kind::TimedOut && !m_access.time().hasWritten())
        m_access.time().giveUp();
    else if (mayPass(error))
        return whole(select);
    m_report(select, error);
    return nullptr;
}

std::unique_ptr<DbCursor> Reader::held(HeldRead &held)
{
    const std::optional<QString> text = serverText(held.select, searchOf(held.select));
    auto results = text ? run(held.select, held.reading(*text)) : std::nullopt;
    if (results) {
        held.rows = shared(std::move(results->back()));
        return std::make_unique<HeldRowsCursor>(held.rows);
    }
    m_access.session().rollBack(m_access.budget());
    return nullptr;
}

std::optional<std::int64_t> Reader::count(const QString &select)
{
    const ServerText text = countText(select, searchOf(select));
    if (!text) {
        refuse(select, text.error());
        return {};
    }
    const auto results = run(select, text->toUtf8());
    return results ? std::optional(countIn(results->back())) : std::nullopt;
}

QString Reader::counting(const QString &select) const
{
    ServerText text = countText(select, searchOf(select));
    return text ? *std::move(text) : QString();
}

std::optional<std::vector<DbRowId>> Reader::rowIds(const QString &select)
{
    const Rows found = rows(select);
    if (!found)
        return {};
    HeldRowsCursor cursor(found);
    std::vector<DbRowId> ids;
    while (cursor.next() == DbCursor::Step::Row) {
        const std::optional<DbRowId> id = cursor.rowId();
        if (!id) {
            refuse(select, u"the rows have no identity"_s);
            return {};
        }
        ids.push_back(*id);
    }
    return ids;
}

} // namespace harrowby::postgres
