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

/// Holds the connection to a store file and watches over the file: before each write, after it and twice a second. Once
/// the file was moved, removed, replaced, overwritten, or has lost its log, each further statement on the connection
/// fails, and what the log holds is brought to where it belongs. It moves the log into the file itself, each time
/// after a look. docs/database.md tells the whole.
class StoreGuard final : public QObject
{
    Q_OBJECT

public:
    /// Takes the connection over. `path` is the name that the person gave; `wait` becomes the busy handler again after
    /// each moment in which there must be none, and must outlive this object.
    StoreGuard(SqliteDatabase database, const QString &path, BusyWait &wait);
    /// Looks once more, brings away what is left to bring away, and closes the connection.
    ~StoreGuard() override;

    [[nodiscard]] sqlite3 *database() const { return m_database.get(); }

    /// From now on it looks by itself while an event loop runs.
    void keepWatch() { m_timer.start(); }
    /// Looks now. False when the store is lost.
    bool check();
    /// What the timer does: looks, and moves the log into the file, or goes on bringing the log away.
    void tick();

    [[nodiscard]] bool isLost() const { return m_loss.has_value(); }
    /// Only when it is lost.
    [[nodiscard]] const StoreLoss &loss() const { return *m_loss; }
    /// The failure with what has happened to the file as its reason, when that is why.
    [[nodiscard]] DbFailure explained(const DbFailure &failure);

    /// While one lives, statements of its thread work on a store that is lost too.
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
    /// Comes once when it is lost, and again when something about the loss has changed. Never out of a statement.
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
