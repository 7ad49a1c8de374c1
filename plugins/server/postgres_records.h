// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/records.h"
#include "postgres/server_access.h"
#include "postgres/transaction.h"
#include "postgres/writer.h"

#include <QSet>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

namespace harrowby::server {

/// Records on a server, over a session that may be others' too. Each write, and all writes that are done together, are
/// done exactly once; DbFailure::engineState is 08007 where nobody knows.
///
/// Who writes several things together keeps the other programs' records of the same table away, not their tills: these
/// wait only where RecordTable::guarded names what they write to.
class PostgresRecords : public app::Records
{
public:
    /// `session` is kept as long as these records; it owns what the references are to.
    PostgresRecords(std::shared_ptr<void> session, postgres::ServerAccess &access, postgres::Writer &writer);
    ~PostgresRecords() override;

    /// From now on every write is refused.
    void keepFromWriting() { m_writes = false; }
    /// What is done together may take its time between two statements.
    void workForLong() { m_worksForLong = true; }
    /// Called before each statement that stands alone, and before each transaction.
    void setBeforeAction(std::function<void()> prepare) { m_beforeAction = std::move(prepare); }

    /// Called when a transaction is about to be committed, and when that has ended.
    void setAroundCommit(std::function<void(bool begins)> tell) { m_aroundCommit = std::move(tell); }

    /// See StoreRecords.
    [[nodiscard]] std::optional<DbFailure> holdMoment();
    void releaseMoment();

    [[nodiscard]] const app::RecordDialect &dialect() const override;
    [[nodiscard]] std::optional<QString> unstorable(const QString &table, const DbAssignments &values) const override;
    [[nodiscard]] app::RecordValue converted(const QString &table, const QString &column,
                                             const app::RecordValue &value) const override;

protected:
    Answer<bool> hasTable(const app::RecordTable &table) override;
    Answer<QList<app::RecordRow>> select(const app::RecordStatement &statement) override;
    Answer<bool> selectEach(const app::RecordStatement &statement, const RowTaker &take) override;
    Answer<std::int64_t> change(const app::RecordStatement &statement) override;
    Answer<std::int64_t> changeEach(const QString &text, const QList<QList<app::RecordValue>> &rows) override;
    std::optional<DbFailure> begin(const app::RecordTable &table, const QString &name) override;
    std::optional<DbFailure> commit() override;
    void rollBack() override;

private:
    [[nodiscard]] Result<PgResults, PgError> read(const QByteArray &text);
    [[nodiscard]] Answer<bool> selectInPieces(const app::RecordStatement &statement, const QByteArray &text,
                                              const RowTaker &take);
    [[nodiscard]] Answer<std::int64_t> make(const app::RecordStatement &statement);
    [[nodiscard]] Answer<std::int64_t> changeAlone(const QString &text, const QByteArray &serverText);
    [[nodiscard]] Answer<std::int64_t> changeOneByOne(const QString &text, const QList<QList<app::RecordValue>> &rows);
    void beforeAction() const;

    std::shared_ptr<void> m_session;
    postgres::ServerAccess &m_access;
    postgres::Writer &m_writer;
    std::function<void()> m_beforeAction;
    std::function<void(bool)> m_aroundCommit;
    std::unique_ptr<postgres::Transaction> m_transaction;
    QSet<QString> m_tables; ///< of the program's own that are there, in small letters
    int m_lists = 0;        ///< that were read in pieces
    bool m_holdsMoment = false;
    bool m_writes = true;
    bool m_worksForLong = false;
};

} // namespace harrowby::server
