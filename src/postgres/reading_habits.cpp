// SPDX-License-Identifier: MIT
#include "postgres/reading_habits.h"

namespace harrowby::postgres {

namespace {

constexpr qsizetype mostShapes = 1000; ///< a host may run statements of its own

} // namespace

/// The text without what stands between quotes, and without figures.
QString ReadingHabits::shapeOf(const QString &select)
{
    QString shape;
    shape.reserve(select.size());
    bool isLiteral = false;
    for (const QChar letter : select) {
        if (letter == u'\'')
            isLiteral = !isLiteral;
        else if (!isLiteral && !letter.isDigit())
            shape += letter;
    }
    return shape;
}

void ReadingHabits::learn(QSet<QString> &shapes, const QString &select)
{
    if (shapes.size() >= mostShapes)
        shapes.clear();
    shapes.insert(shapeOf(select));
}

void ReadingHabits::noteCount(const QString &select, std::int64_t rows)
{
    if (rows <= firstRows)
        learn(m_whole, select);
}

void ReadingHabits::noteAllWanted(const QString &select)
{
    learn(m_whole, select);
}

void ReadingHabits::noteRestUnwanted(const QString &select)
{
    m_whole.remove(shapeOf(select));
}

void ReadingHabits::noteList(const QString &select, std::int64_t rows)
{
    if (rows <= shortListRows)
        learn(m_shortLists, select);
    else
        m_shortLists.remove(shapeOf(select));
}

} // namespace harrowby::postgres
