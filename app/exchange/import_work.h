// SPDX-License-Identifier: MIT
#pragma once

#include "app/catalogue/catalogue_import.h"
#include "app/catalogue/own_records.h"

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

/// For a person; a stop is no failure.
[[nodiscard]] inline QString endWords(const ImportEnd &end)
{
    if (end.kind != ImportEnd::Kind::Cancelled)
        return end.words;
    return QStringLiteral("Stopped. ") + (end.words.isEmpty() ? QStringLiteral("Nothing was changed.") : end.words);
}

/// Runs it over a connection of its own.
template <typename T>
[[nodiscard]] Imported<T> withImport(const ImportDesk &desk, const std::function<Imported<T>(CatalogueImport &)> &work)
{
    auto own = OwnRecords::open(desk.store);
    if (!own)
        return Unexpected(ImportEnd{ImportEnd::Kind::Failed, own.error()});
    CatalogueImport import((*own)->records(), desk);
    return work(import);
}

} // namespace harrowby::app
