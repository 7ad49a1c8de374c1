// SPDX-License-Identifier: MIT
#pragma once

#include "app/catalogue/equal_rows.h"
#include "app/catalogue/import_file.h"
#include "app/catalogue/import_lines.h"
#include "app/catalogue/import_shelf.h"
#include "app/work/work_step.h"

#include <QDateTime>
#include <QList>
#include <QStringList>

#include <functional>
#include <optional>

namespace harrowby::app {

/// Compares a file with the store and puts what it finds on the shelf, in pieces: one preview.
class Staging
{
public:
    /// All must outlive it.
    Staging(Records &records, const ImportFile &file, const ImportChoices &choices, const WorkWatch &watch) :
        m_records(records), m_shelf(records), m_file(file), m_choices(choices), m_watch(watch)
    {
    }

    /// Leaves nothing behind when it is stopped or fails.
    [[nodiscard]] Imported<StagedImport> run(const QDateTime &now);

private:
    using Judge = std::function<Records::Answer<StagedPiece>(const QList<ImportLine> &)>;
    using Done = Imported<void>;

    [[nodiscard]] Done stage();
    [[nodiscard]] Done stageItems();
    [[nodiscard]] Done stageCodes();
    [[nodiscard]] Done stageCategories();
    [[nodiscard]] Done stageBy(ImportLines &lines, const Judge &judge);
    [[nodiscard]] Records::Answer<StagedPiece> judged(const QList<ImportLine> &lines, const Judge &judge,
                                                      EqualRows &equal) const;
    [[nodiscard]] Done kept(const Records::Answer<bool> &put) const;
    [[nodiscard]] Done putNewCategories(const QStringList &names);
    [[nodiscard]] Done taken(const Records::Answer<bool> &census) const;
    void count(const StagedPiece &piece);
    [[nodiscard]] QString choicesText() const;

    Records &m_records;
    ImportShelf m_shelf;
    const ImportFile &m_file;
    const ImportChoices &m_choices;
    WorkWatch m_watch;
    StagedImport m_staged;
};

} // namespace harrowby::app
