// SPDX-License-Identifier: MIT
#pragma once

#include <QSet>
#include <QString>

#include <cstdint>

namespace harrowby::postgres {

/// Which SELECTs are best read whole when perhaps only their first rows are wanted (DbReading::First). A look-up, or a
/// list whose rows are all used, takes one round trip then and not two; of one that is only counted nothing but the
/// first rows should travel. Learned from what came of it, by the statement's text without its literals; until
/// something is known, count and first rows come together, which is one round trip for all of them.
///
/// And which lists are best read whole when they are to be walked: where counting them first looks through as much as
/// reading them does, and they are short.
class ReadingHabits
{
public:
    /// More rows than these are not "first" ones.
    static constexpr std::int64_t firstRows = 10;

    /// More rows than these are not held for the sake of their count.
    static constexpr std::int64_t shortListRows = 10'000;

    [[nodiscard]] bool isReadWhole(const QString &select) const { return m_whole.contains(shapeOf(select)); }
    [[nodiscard]] bool isShortList(const QString &select) const { return m_shortLists.contains(shapeOf(select)); }

    /// The result has so many rows.
    void noteCount(const QString &select, std::int64_t rows);
    /// All rows were asked for after the first ones.
    void noteAllWanted(const QString &select);
    /// A result that was read whole has been let go, though not all of it was read.
    void noteRestUnwanted(const QString &select);
    /// The list that was walked or read for a walk has so many rows.
    void noteList(const QString &select, std::int64_t rows);

private:
    [[nodiscard]] static QString shapeOf(const QString &select);
    static void learn(QSet<QString> &shapes, const QString &select);

    QSet<QString> m_whole;
    QSet<QString> m_shortLists;
};

} // namespace harrowby::postgres
