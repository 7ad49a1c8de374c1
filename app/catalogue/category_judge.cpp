// SPDX-License-Identifier: MIT
#include "app/catalogue/category_judge.h"

#include "app/catalogue/import_words.h"
#include "basic/reserved_categories.h"

using namespace Qt::StringLiterals;

namespace harrowby::app {

/// As it is stored already, or as the till would store it.
QString CategoryJudge::nameOf(const ImportLine &line) const
{
    if (!line.stored.isEmpty()) {
        const RecordValue &stored = line.stored.constFirst().value;
        const QString text = recordText(stored);
        if (m_choices.asStored || std::holds_alternative<QByteArray>(stored) || m_known.rowsOf(text) > 0)
            return text;
    }
    const QString &cell = line.cells.constFirst();
    if (m_known.rowsOf(cell) > 0)
        return cell;
    const QString name = trimUnseen(cell);
    return m_choices.putIntoCapitals && m_known.rowsOf(name) == 0 ? name.toUpper() : name;
}

Records::Answer<bool> CategoryJudge::take(const ImportFile &file, const WorkWatch &watch)
{
    if (const auto failure = m_known.load())
        return Unexpected(*failure);
    ImportLines lines(file, m_choices);
    ImportLine line;
    for (qint64 count = 0; lines.next(line); ++count) {
        if (!line.hasFault())
            m_repeats[nameOf(line)].count(line.line);
        if (count % 1000 == 0 && !watch({u"The file is being read …"_s, lines.percent()}))
            return false;
    }
    return true;
}

StagedPiece CategoryJudge::judge(const QList<ImportLine> &lines)
{
    StagedPiece piece;
    for (const ImportLine &line : lines)
        judgeLine(line, piece);
    return piece;
}

/// Empty for one that can be added.
QString CategoryJudge::problemOf(const QString &name) const
{
    if (const Repeats same = m_repeats.value(name); same.rows > 1)
        return repeatsWords(name, same);
    if (name.isEmpty())
        return u"The name is missing."_s;
    if (name == otherCategory)
        return u"%1 is always there, and is not stored."_s.arg(name);
    return categoryProblem(name).value_or(QString());
}

void CategoryJudge::judgeLine(const ImportLine &line, StagedPiece &piece)
{
    StagedRow row;
    row.line = line.line;
    row.column = line.column;
    row.reason = line.fault;
    if (line.hasFault()) {
        piece.rows << row;
        return;
    }
    if (m_choices.asStored)
        return add(line, line.stored.at(0), line.stored.at(1), piece);
    const QString name = nameOf(line);
    row.stockId = name;
    row.isRepeated = m_repeats.value(name).rows > 1;
    if (m_paired.value(name) < m_known.rowsOf(name)) {
        ++m_paired[name];
        row.what = RowKind::Unchanged;
    } else if (row.reason = problemOf(name); row.reason.isEmpty()) {
        return add(line, {name, false}, {}, piece);
    } else {
        row.column = m_lines.heading(0);
    }
    piece.rows << row;
}

void CategoryJudge::add(const ImportLine &line, const StoredValue &name, const StoredValue &date,
                        StagedPiece &piece) const
{
    StagedRow row;
    row.line = line.line;
    row.what = RowKind::New;
    row.stockId = recordText(name.value);
    piece.rows << row;
    piece.categories << StagedCategory{line.line, name, date};
}

} // namespace harrowby::app
