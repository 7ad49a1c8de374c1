// SPDX-License-Identifier: MIT
#pragma once

#include "app/shop/busy_wait.h"
#include "app/shop/store_guard.h"
#include "app/start/log_file.h"
#include "tests/doubles/database.h"
#include "tests/doubles/recording_connection.h"
#include "tests/platform/isolated_home.h"
#include "tests/support/doubles.h"
#include "ui/inventory.h"

#include <harrowby/file_failure.h>

#include <QStringList>

#include <memory>
#include <set>

namespace harrowby::app::test {

/// A till whose disk may fail: the real window on a store that the program has made and opened, with its own saved
/// settings, receipts and log file, all below one home. Every question is answered with Yes. It records the statements
/// that were reported done, and the failures that were reported.
class TroubledTill
{
public:
    TroubledTill();
    ~TroubledTill();
    TroubledTill(const TroubledTill &) = delete;
    TroubledTill &operator=(const TroubledTill &) = delete;

    [[nodiscard]] const Controls &controls() const { return m_window->controls(); }
    [[nodiscard]] const FormState &state() const { return m_window->state(); }
    void click(const char *button) const;
    /// Puts a unit of each of the first two items into the cart, which holds nothing else then.
    void fillCart();
    /// Fills the cart and commits it, a second after the one before.
    void sell();

    /// What the program does twice a second; a checkpoint is part of it.
    void tick() { m_guard->tick(); }
    [[nodiscard]] bool isLost() const { return m_guard->isLost(); }

    /// First column of the first row.
    [[nodiscard]] QString cell(const QString &select) const { return m_store->rows(select).value(0); }
    [[nodiscard]] const harrowby::test::Database &store() const { return *m_store; }
    [[nodiscard]] QString iniValue(const QString &key) const;
    /// Number of complete receipts; a file with a receipt's name that is no PDF ends the test.
    [[nodiscard]] int receipts() const;
    [[nodiscard]] qint64 logSize() const;
    [[nodiscard]] QString storePath() const { return m_path; }
    [[nodiscard]] QString home() const { return m_home.path(); }

    QStringList failedStatements; ///< reported failed by the connection
    QStringList told;             ///< notices shown at the till, of statements and files
    QStringList toldOfStatements;
    std::set<FileFailure::Kind> toldOfFiles;
    bool hasLogTrouble = false; ///< the log was reported as not writable, and not as writable again
    /// Forgets all of that but the trouble with the log.
    void forget();
    /// Why the file does not hold exactly what was reported done; empty when it does.
    [[nodiscard]] QString differsFromWhatWasDone();

private:
    void makeStore() const;
    void connectAll();

    harrowby::testing::IsolatedHome m_home;
    QString m_path;
    LogFile m_log;
    LogRouting m_routing;
    BusyWait m_wait;
    std::unique_ptr<StoreGuard> m_guard;
    std::unique_ptr<harrowby::test::Database> m_store;
    std::unique_ptr<harrowby::test::Database> m_expected;
    QStringList m_done; ///< since the last comparison
    std::shared_ptr<harrowby::test::RecordingConnection> m_connection;
    std::shared_ptr<harrowby::test::FrozenClock> m_clock = std::make_shared<harrowby::test::FrozenClock>();
    std::unique_ptr<Inventory> m_window;
};

/// Opens the window on a store, lets it load, and closes it. Returns the failures that were reported.
[[nodiscard]] QStringList openAndClose(sqlite3 *database);

} // namespace harrowby::app::test
