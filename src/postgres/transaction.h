// SPDX-License-Identifier: MIT
#pragma once

#include "postgres/server_error.h"
#include "postgres/server_result.h"
#include "postgres/writer.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <vector>

namespace harrowby::postgres {

/// Several statements that are done together, exactly once or not at all.
///
/// When the session breaks in the middle, or another transaction is in the way, it is begun anew and what was run
/// before is run again. It goes on only when all of that gives the same as at first; so the caller does not notice.
class Transaction
{
public:
    /// The writer must outlive it. `locks` are statements that run before the first one; `what` is the work in words
    /// for a person.
    Transaction(Writer &writer, QList<QByteArray> locks, QString what);
    /// Takes back what was not committed.
    ~Transaction();
    Transaction(const Transaction &) = delete;
    Transaction &operator=(const Transaction &) = delete;

    /// With the first statements, if there are any: their results.
    [[nodiscard]] Result<PgResults, PgError> begin(const QByteArray &first = {});
    /// The results of the text's statements. After an error nothing more is run, and the transaction is taken back.
    [[nodiscard]] Result<PgResults, PgError> run(const QByteArray &statements);
    [[nodiscard]] Actions::End commit();
    void rollBack();

private:
    struct Step
    {
        QByteArray statements;
        QByteArray digest; ///< of what came back
    };

    [[nodiscard]] Result<PgResults, PgError> beginOnce(const QByteArray &first = {});
    [[nodiscard]] Result<void, PgError> beginAnew(PgError why);
    [[nodiscard]] Result<void, PgError> replay();
    [[nodiscard]] Result<PgResults, PgError> runOnce(const QByteArray &statements);
    Actions::End finished(const Actions::End &end);
    void takeBack();
    void leave(const PgError &why);
    [[nodiscard]] bool goesOnAfter(const PgError &error);
    void note(const QByteArray &statements, const PgResults &results);

    Writer &m_writer;
    QList<QByteArray> m_locks;
    QString m_what;
    ActionNumber m_action;
    std::vector<Step> m_steps;
    qsizetype m_size = 0;  ///< of the steps' texts
    bool m_isLong = false; ///< too much to be run again
    bool m_isOver = false;
    int m_tries = 0;
    int m_collisions = 0;
};

} // namespace harrowby::postgres
