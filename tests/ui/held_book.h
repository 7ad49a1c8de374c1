// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/sqlite_records.h"

#include <harrowby/counter.h>

#include <QMap>
#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

namespace harrowby::test {

/// Which carts the file must hold, of all tills together, and what was seen that must not be.
struct HeldBook
{
    QMap<QString, std::vector<CounterLine>> carts; ///< by HeldID
    QStringList problems;
    int held = 0;     ///< at the counter
    int recalled = 0; ///< at the counter
};

/// Records that keep the book. Those of the counter compare what is held and what comes back with its cart, at the very
/// commit.
class WatchedRecords final : public app::SqliteRecords
{
public:
    enum class Place { AtTheCounter, Elsewhere };

    WatchedRecords(sqlite3 *database, HeldBook &book, Place place);

    /// The cart that was held last at the counter, until the next look at it.
    [[nodiscard]] std::optional<QString> takePutAside();

protected:
    Answer<std::int64_t> change(const app::RecordStatement &statement) override;
    Answer<std::int64_t> changeEach(const QString &text, const QList<QList<app::RecordValue>> &rows) override;
    std::optional<DbFailure> begin(const app::RecordTable &table, const QString &name) override;
    std::optional<DbFailure> commit() override;
    void rollBack() override;

private:
    void note(const app::RecordStatement &statement);
    void judgeHeld(const QString &id, const std::vector<CounterLine> &lines);
    void judgeGone(const QString &id);
    void judgeRecalled(const CounterLine &line);
    [[nodiscard]] bool isWhollySold(const CounterLine &line, double besides);
    void problem(const QString &text) { m_book.problems << text; }

    HeldBook &m_book;
    Place m_place;
    std::vector<CounterLine> m_cartBefore; ///< before the transaction
    QMap<QString, std::vector<CounterLine>> m_lines;
    QStringList m_added;
    QStringList m_removed;
    std::optional<QString> m_putAside;
};

} // namespace harrowby::test
