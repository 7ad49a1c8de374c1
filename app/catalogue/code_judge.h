// SPDX-License-Identifier: MIT
#pragma once

#include "app/catalogue/import_lines.h"
#include "app/catalogue/import_shelf.h"
#include "app/catalogue/known_codes.h"
#include "app/catalogue/repeats.h"
#include "app/work/work_step.h"

#include <QHash>
#include <QList>
#include <QSet>
#include <QString>

#include <optional>

namespace harrowby::app {

/// Says of each row of a file of codes what becomes of it, by the rules of CodeTable.
class CodeJudge
{
public:
    /// All must outlive it.
    CodeJudge(Records &records, const ImportLines &lines, const ImportChoices &choices) :
        m_records(records), m_lines(lines), m_choices(choices), m_known(records)
    {
    }

    /// Reads the file through, for codes that stand in it more than once; false when it was stopped.
    [[nodiscard]] Records::Answer<bool> take(const ImportFile &file, const WorkWatch &watch);
    /// The next rows of the file, in its order.
    [[nodiscard]] Records::Answer<StagedPiece> judge(const QList<ImportLine> &lines);

private:
    enum Column {
        Code,
        Item,
        Units,
    };

    [[nodiscard]] QString storedSpelling(const ImportLine &line) const;
    void judgeLine(const ImportLine &line, StagedPiece &piece);
    void judgeNew(const ImportLine &line, const QString &code, StagedPiece &piece) const;
    void judgeChange(const ImportLine &line, const KnownCode &known, StagedPiece &piece) const;
    void asStored(const ImportLine &line, StagedPiece &piece) const;
    [[nodiscard]] int differences(const ImportLine &line, const KnownCode &known) const;
    [[nodiscard]] bool takeEqual(const ImportLine &line, const QString &code);
    [[nodiscard]] Result<std::int64_t, QString> unitsOf(const ImportLine &line) const;
    [[nodiscard]] StagedRow rowOf(const ImportLine &line, RowKind what) const;
    [[nodiscard]] StagedRow refused(const ImportLine &line, int column, const QString &reason) const;

    Records &m_records;
    const ImportLines &m_lines;
    const ImportChoices &m_choices;
    KnownCodes m_known;
    QHash<QString, Repeats> m_repeats;           ///< by the longest spelling
    QSet<QString> m_items;                       ///< IDs of this piece that items have
    QHash<QString, QList<KnownCode>> m_unpaired; ///< of repeated codes those that no row was equal to yet
};

} // namespace harrowby::app
