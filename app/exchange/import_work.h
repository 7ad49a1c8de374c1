// SPDX-License-Identifier: MIT
#pragma once

#include "app/catalogue/catalogue_import.h"
#include "app/csv/csv_guess.h"
#include "app/records/store_records.h"

#include <functional>
#include <utility>

/// Pieces of an import on the thread of a job, which is given nothing that another thread uses.
namespace harrowby::app {

/// What the job threw is a failure like others.
template <typename T>
[[nodiscard]] Imported<T> flat(const Result<Imported<T>, QString> &outcome)
{
    if (outcome)
        return *outcome;
    return Unexpected(ImportEnd{ImportEnd::Kind::Failed, outcome.error()});
}

/// For a person, with a sign of warning; a stop is no failure and has none.
[[nodiscard]] QString endWords(const ImportEnd &end);

struct OpenedList
{
    ImportFile file;
    CsvGuess guess;
};
/// Reads a file that may be a list, and finds out its form.
[[nodiscard]] Imported<OpenedList> openList(const QString &path, const WorkWatch &watch);

/// What is found out once it is known which columns hold figures: what the others hold leaves nothing open.
struct SettledList
{
    DecimalGuess decimal;
    bool mayBeAsStored = false;
};
[[nodiscard]] Imported<SettledList> settleList(const ImportDesk &desk, const ImportFile &file,
                                               const ImportChoices &choices, const WorkWatch &watch);

/// Writes the rows of a preview. It is what was agreed to: a file that has gone since, with a stick that was pulled
/// out, is not missed.
[[nodiscard]] Imported<ImportOutcome> applyList(const ImportDesk &desk, std::int64_t id, bool validRows,
                                                const QString &path, const WorkWatch &watch);

/// Runs it over a connection of its own.
template <typename T>
[[nodiscard]] Imported<T> withImport(const ImportDesk &desk, const std::function<Imported<T>(CatalogueImport &)> &work)
{
    auto own = openStoreRecords(desk.store, Access::Write);
    if (!own)
        return Unexpected(ImportEnd{ImportEnd::Kind::Failed, own.error()});
    CatalogueImport import((*own)->records(), desk);
    return work(import);
}

} // namespace harrowby::app
