// SPDX-License-Identifier: MIT
#pragma once

#include "tests/doubles/database.h"
#include "tests/doubles/recording_connection.h"
#include "tests/support/box_queue.h"
#include "tests/support/doubles.h"
#include "ui/inventory.h"

#include <QRandomGenerator>
#include <QStringList>

#include <functional>
#include <memory>

namespace harrowby::test {

/// One store's till at a file that others use too: the real window, in a process of its own. The connection is set as
/// a shop's is: write-ahead log, synchronous FULL, a bounded wait for a lock. Every question is answered with Yes.
class Till
{
public:
    enum class Pace {
        Shop,
        Hurried, ///< for some thousand actions: no box is built, and nothing waits for the disk
    };

    explicit Till(const QString &path, Pace pace = Pace::Shop);
    /// At a store that is open already, as it is set.
    explicit Till(sqlite3 *database);
    ~Till();
    Till(const Till &) = delete;
    Till &operator=(const Till &) = delete;

    /// Prints each writing statement: "B" and the statement before it is begun, "A1" (done), "A0" (refused) or
    /// "AU" (not known) and the statement after it. Those of which `isLeft` says so are left to another one's report:
    /// it is asked before with an empty text and afterwards with what was done.
    void reportStatements(const std::function<bool(const QString &done)> &isLeft = {});
    /// Gets each statement that fails, and what became of it if it was a write.
    void followFailures(const std::function<void(const DbFailure &failure, WriteOutcome outcome)> &follow);
    void logIn(const QString &name, const QString &password);
    /// Puts one to six units of items of the first page into the cart, commits it, and lets a second pass.
    void sell(QRandomGenerator &random);
    /// Commits the cart, and lets a second pass.
    void purchase();
    /// Puts one unit of the item of a button into the cart.
    void choose(int button) const;
    [[nodiscard]] bool hasCart() const;
    /// Commits the cart, in the same second as the one before.
    void purchaseAtOnce() const;
    /// Adds units to an item, and takes them back.
    void reorder(const QString &key, int units) const;
    void undoReorder() const { click(QStringLiteral("Command23")); }
    /// Undoes the last purchase, whose items go into the cart.
    void undo() const { click(QStringLiteral("Command25")); }
    /// Saves a stock item: an added one, or one that has the ID already.
    void saveItem(const QString &id, const QString &category, int figure) const;
    void addCategory(const QString &name) const;
    /// Deletes the one that was added last.
    void deleteCategory() const;
    [[nodiscard]] const FormState &state() const { return m_window->state(); }

private:
    void open(const std::shared_ptr<DbConnection> &store, Pace pace);
    void click(const QString &name) const;

    std::unique_ptr<Database> m_database;
    std::shared_ptr<DbConnection> m_store;
    std::shared_ptr<RecordingConnection> m_connection;
    std::unique_ptr<BoxQueue> m_answers; ///< of the real boxes, where there are any
    std::shared_ptr<FrozenClock> m_clock = std::make_shared<FrozenClock>();
    std::unique_ptr<Inventory> m_window;
};

/// Writes a line to the standard output, unbuffered.
void say(const QString &line);

/// A till's output, parsed.
struct TillReport
{
    QStringList done;     ///< statements that had been done, in order
    QStringList failed;   ///< statements that had failed, or are not known
    QString underWay;     ///< begun, without a line after it
    QStringList messages; ///< the other lines

    void read(const QByteArray &lines);
};

} // namespace harrowby::test
