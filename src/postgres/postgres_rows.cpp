// SPDX-License-Identifier: MIT
#include "postgres/postgres_rows.h"

#include "postgres/server_link.h"

#include <libpq-fe.h>

#include <utility>

namespace harrowby {

namespace {

/// Of a SELECT; what comes after them is fetched ahead. A list that is shorter is not worth a thread.
constexpr int rowsWithoutThread = 256;

} // namespace

PgRows::PgRows(std::shared_ptr<postgres::ServerLink> link, std::chrono::milliseconds answer, bool beganIdle) :
    m_link(std::move(link)), m_answer(answer), m_beganIdle(beganIdle)
{
}

PgRows::PgRows(PgRows &&) noexcept = default;

PgRows::~PgRows()
{
    if (!m_link || m_link->isLost())
        return;
    if (m_isDone)
        m_link->drain(m_answer);
    else
        m_link->cancel();
    finishText();
}

PgRows::Step PgRows::next()
{
    if (m_error)
        return Step::Failed;
    if (m_isDone)
        return Step::Done;
    if (!std::exchange(m_isAhead, false))
        fetch();
    if (m_error)
        return Step::Failed;
    m_isDone = m_row.rowCount() == 0;
    return m_isDone ? Step::Done : Step::Row;
}

bool PgRows::nextSelect()
{
    if (!m_isDone || m_error || !m_link)
        return false;
    fetch();
    if (m_error || !m_link)
        return false;
    m_isAhead = true;
    m_isDone = false;
    return true;
}

/// To the next result that has columns, which is a row or the end of a SELECT; or to the end of the text.
void PgRows::fetch()
{
    if (isInBatch() && !m_link->isLost() && ++m_at < m_batch.rowCount()) // closing takes all of them away
        return;
    for (;;) {
        if (!m_link->hasResult()) { // most rows are there
            postgres::Waiter waiter(m_link->hook(), PgWaiting::Answer);
            if (std::optional<PgError> error = m_link->await(m_answer, waiter)) {
                fail(*std::move(error));
                return;
            }
        }
        if (m_link->takeRows(m_batch)) {
            m_at = 0;
            return;
        }
        pg_result *raw = m_link->take();
        if (!raw) {
            if (m_link->isLost())
                fail(postgres::lostError({}, true));
            m_link.reset();
            return;
        }
        PgResult result(raw);
        const ExecStatusType status = PQresultStatus(raw);
        if (status == PGRES_SINGLE_TUPLE || status == PGRES_TUPLES_OK) {
            m_row = std::move(result);
            m_fetched = status == PGRES_SINGLE_TUPLE ? m_fetched + 1 : 0;
            if (m_fetched == rowsWithoutThread)
                m_link->fetchAhead();
            return;
        }
        if (status != PGRES_COMMAND_OK && status != PGRES_EMPTY_QUERY) {
            fail(m_link->failureOf(raw));
            return;
        }
    }
}

void PgRows::fail(const PgError &error)
{
    m_error = error;
    if (!m_link->isLost())
        m_link->drain(m_answer);
    finishText();
    m_link.reset();
}

/// Ends a transaction that this text has begun and not ended.
void PgRows::finishText()
{
    if (!m_link->isLost() && m_beganIdle && m_link->isInTransaction())
        (void)m_link->exchange("rollback", m_answer, PgWaiting::Answer);
}

} // namespace harrowby
