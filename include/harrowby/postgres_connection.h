// SPDX-License-Identifier: MIT
#pragma once

#include <harrowby/db_connection.h>
#include <harrowby/postgres_export.h>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

namespace harrowby {

namespace postgres {
struct ConnectionParts;
}

/// How a PostgresConnection works. All of it may stay as it is.
struct PostgresOptions
{
    QString location; ///< see DbConnection::location()

    /// A folder of this machine for what must outlive the program: the number of a write of which nobody knows yet
    /// whether it was done, and which server was used last, so that none that it has replaced is. Made when it is
    /// missing, for its owner alone; the programs of one user share it. Empty: "harrowby/actions" below
    /// QStandardPaths::GenericDataLocation.
    QString stateFolder;

    std::chrono::milliseconds connecting{2'000}; ///< until a server has answered that it can be worked with
    std::chrono::milliseconds silence{5'000};    ///< of a server that has a statement
    std::chrono::milliseconds lock{10'000};      ///< others' locks, in one action of the user
    std::chrono::milliseconds rest{60'000};      ///< for the rest of an action whose first write has been sent

    /// Asked at each search of the till: whether the text is found anywhere in an ID or a name, in any alphabet. Empty:
    /// it is searched as the statement says.
    std::function<bool()> findsAnywhere;
};

/// DbConnection over a shop's PostgreSQL servers, through libpq. The component's statements are sent as they are but
/// for what the dialect needs, and give the rows, orders and values that a store file gives.
///
/// The database is one that harrowby-server has set up. The connection is made by the first statement that needs it or
/// by open(), and made again when it breaks, to whichever of the shop's servers may be written to.
///
/// Each write is done exactly once, whatever becomes of the connection meanwhile; where nobody can say whether it was
/// done, it has failed with WriteOutcome::Unknown, and no other is sent before that is known, also by the next program
/// that is started with the same state folder.
///
/// Waiting: no function blocks longer than the options say, and while one waits it calls the wait hook. The times are
/// those of one action: it begins when the thread's outermost event loop is about to wait, or with beginAction(). After
/// the first write of an action its rest has PostgresOptions::rest, which a person can end through the hook.
///
/// A result read with DbReading::Walk or CountedWalk comes over a session of its own, three at most at once, each in
/// one snapshot; a further one is read whole.
///
/// DbFailure::engineState is the server's SQLSTATE; without an answer of the server it is 08001 (cannot be reached),
/// 08004 (does not let the till in), 08006 (the connection broke), 08007 (not known whether it was done), 57014 (waited
/// for in vain, or given up), 22000 (cannot be stored, so it was not sent).
///
/// Used on one thread. Needs no QCoreApplication; without one, beginAction() is the caller's.
class HARROWBY_POSTGRES_EXPORT PostgresConnection final : public DbConnection
{
public:
    /// `target` is what libpq takes: "postgresql://HOST,HOST/DATABASE", "service=NAME" or other keywords, completed by
    /// service file, password file and environment.
    explicit PostgresConnection(const QString &target, PostgresOptions options = {});
    ~PostgresConnection() override;

    /// Connects and looks whether the database is one of a shop; not reported. Also tells of writes of an earlier
    /// program that were still unknown: see setResolvedHandler(). The reason when it cannot.
    [[nodiscard]] std::optional<DbFailure> open();
    [[nodiscard]] bool isOpen() const;

    /// A new action of the user begins: its waits have their full time again.
    void beginAction();

    /// A write that had been told as unknown has been resolved: `what` is its text (of a purchase's row with its ID and
    /// sum: "INSERT PurchaseCart HV1 6.5"), `known` what has become of it; WriteOutcome::Unknown when nobody can find
    /// out any more, as another program has taken this one for dead. Called in the middle of a statement; must not
    /// throw, enter an event loop or use this connection. Set before open() it is also told of those of an earlier
    /// program, which wait for one that has a handler.
    void setResolvedHandler(std::function<void(const QString &what, WriteOutcome known)> handler);

    bool Execute(const QString &statement) override;
    [[nodiscard]] std::unique_ptr<DbCursor> query(const QString &select) override;
    [[nodiscard]] std::optional<std::int64_t> countRows(const QString &select) override;
    [[nodiscard]] std::optional<std::vector<DbRowId>> rowIds(const QString &select) override;
    bool insertRow(const QString &table, const DbAssignments &values) override;
    bool updateRow(const QString &table, DbRowId row, const DbAssignments &values) override;
    [[nodiscard]] QString location() const override;
    /// False: what is held has to be known. holdFor() is granted.
    bool hold() override;
    bool settle(const QString &write) override;
    [[nodiscard]] bool mayHaveWritten() const override;
    [[nodiscard]] WriteOutcome lastWrite() const override;
    [[nodiscard]] std::unique_ptr<DbCursor> queryAs(const QString &select, DbReading how) override;
    /// The lock is taken by the SELECT, and its write is sent by settle(), in one round trip each.
    bool holdFor(const QString &select, HeldWrite write) override;
    void setWaitHook(WaitHook hook) override;

private:
    friend struct postgres::ConnectionParts;
    struct HARROWBY_POSTGRES_NO_EXPORT Private;
    std::unique_ptr<Private> d;
};

} // namespace harrowby
