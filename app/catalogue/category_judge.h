// SPDX-License-Identifier: MIT
#pragma once

#include "app/catalogue/import_lines.h"
#include "app/catalogue/import_shelf.h"
#include "app/catalogue/known_categories.h"
#include "app/catalogue/repeats.h"
#include "app/work/work_step.h"

#include <QHash>
#include <QList>
#include <QString>

namespace harrowby::app {

/// Says of each row of a file of categories what becomes of it. A category has a name and nothing to change.
class CategoryJudge
{
public:
    /// All must outlive it.
    CategoryJudge(Records &records, const ImportLines &lines, const ImportChoices &choices) :
        m_lines(lines), m_choices(choices), m_known(records)
    {
    }

    /// Reads the file through, for names that stand in it more than once; false when it was stopped.
    [[nodiscard]] Records::Answer<bool> take(const ImportFile &file, const WorkWatch &watch);
    /// The next rows of the file, in its order.
    [[nodiscard]] StagedPiece judge(const QList<ImportLine> &lines);

private:
    [[nodiscard]] QString nameOf(const ImportLine &line) const;
    void judgeLine(const ImportLine &line, StagedPiece &piece);
    [[nodiscard]] QString problemOf(const QString &name) const;
    void add(const ImportLine &line, const StoredValue &name, const StoredValue &date, StagedPiece &piece) const;

    const ImportLines &m_lines;
    const ImportChoices &m_choices;
    KnownCategories m_known;
    QHash<QString, Repeats> m_repeats; ///< of each name
    QHash<QString, int> m_paired;      ///< rows of the store that a row of the file was equal to
};

} // namespace harrowby::app
