// SPDX-License-Identifier: MIT
#pragma once

#include "app/shop/left_log.h"
#include "app/shop/store_loss.h"
#include "app/shop/store_watch.h"
#include "engine/database.h"

#include <harrowby/db_connection.h>

#include <QObject>
#include <QTimer>

#include <atomic>
#include <optional>

namespace harrowby::app {

class BusyWait;

/// Owns the connection to a store file and checks the file: in the commit hook, after each write, and twice a second.
/// Once the file was moved, removed, replaced, overwritten, or has lost its log, each further statement on the
/// connection fails, and the log is checkpointed into the file that was opened, or renamed. Runs all checkpoints
/// itself, each after a check. Details in docs/database.md. Lives on the user-interface thread.
class StoreGuard final : public QObject
{
    Q_OBJECT

public:
    /// Takes ownership of the connection. `path` is the name that the person gave. `wait` is its busy handler, removed
    /// during checkpoints and then set again; it must outlive this object.
    StoreGuard(SqliteDatabase database, const QString &path, BusyWait &wait);
    /// Checks once more, finishes moving the log of a lost store, and closes the connection.
    ~StoreGuard() override;

    [[nodiscard]] sqlite3 *database() const { return m_database.get(); }

    /// Starts the timer, which calls tick() while an event loop runs.
    void keepWatch() { m_timer.start(); }
    /// Checks the file now. False when the store is lost.
    bool check();
    /// Checks the file, and then checkpoints the log, or goes on moving the log of a lost store away.
    void tick();

    [[nodiscard]] bool isLost() const { return m_loss.has_value(); }
    /// Precondition: isLost().
    [[nodiscard]] const StoreLoss &loss() const { return *m_loss; }
    /// The failure, with the loss of the file as its reason when that has caused it.
    [[nodiscard]] DbFailure explained(const DbFailure &failure);

    /// While one lives, statements of its thread also work on a lost store, for the rescue copy.
    class Pass
    {
    public:
        explicit Pass(StoreGuard &guard);
        ~Pass();
        Pass(const Pass &) = delete;
        Pass &operator=(const Pass &) = delete;

    private:
        StoreGuard &m_guard;
        const StoreGuard *m_outer; ///< whose pass this thread had before
    };

Q_SIGNALS:
    /// Emitted when the store is lost, and again when loss() has changed. Never emitted within a statement.
    void lossChanged();

private:
    static int onCommit(void *self) noexcept;
    static int onLogWritten(void *self, sqlite3 *database, const char *name, int pages) noexcept;
    static int onStatementDone(unsigned kind, void *self, void *statement, void *nanoseconds) noexcept;
    static int onPrepare(void *self, int action, const char *first, const char *second, const char *name,
                         const char *trigger) noexcept;
    static int onProgress(void *self) noexcept;

    void attach();
    void detach();
    void lose(StoreWatch::Finding finding);
    [[nodiscard]] StoreLoss::Kind kindOf(StoreWatch::Finding finding, const QString &nowAt);
    void shut();
    void bringLogAway();
    bool emptyLog();
    void moveLog(int mode);
    void noteMove(int code);
    [[nodiscard]] LogFiles logFiles() const;
    [[nodiscard]] bool mayPass() const;

    SqliteDatabase m_database;
    QString m_path;
    BusyWait &m_wait;
    StoreHandle m_handle;
    StoreWatch m_watch;
    QTimer m_timer;
    std::optional<StoreLoss> m_loss;
    bool m_told = false;
    bool m_moveFails = false;
    bool m_logIsForeignTo = false; ///< the file that was opened must not get it: it was overwritten
    std::atomic<int> m_passes = 0;
};

} // namespace harrowby::app
