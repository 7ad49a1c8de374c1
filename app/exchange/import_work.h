// SPDX-License-Identifier: MIT
#pragma once

#include "app/catalogue/catalogue_import.h"
#include "app/csv/csv_guess.h"
#include "app/work/watched_store.h"

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

/// Runs it over a connection of its own. What fails because of the watch is a stop.
template <typename T>
[[nodiscard]] Imported<T> withImport(const ImportDesk &desk, const WorkWatch &watch,
                                     const std::function<Imported<T>(CatalogueImport &, const WorkWatch &)> &work)
{
    using Kind = ImportEnd::Kind;
    const auto own = WatchedStore::open(desk.store, Access::Write, watch);
    if (!own)
        return Unexpected(ImportEnd{own.error().wasStopped ? Kind::Cancelled : Kind::Failed,
                                    own.error().wasStopped ? QString() : own.error().words});
    CatalogueImport import((*own)->records(), desk);
    auto outcome = work(import, (*own)->watch());
    if (!outcome && outcome.error().kind == Kind::Failed && (*own)->wasStopped())
        return Unexpected(ImportEnd{Kind::Cancelled, {}});
    return outcome;
}

} // namespace harrowby::app
