// SPDX-License-Identifier: MIT
#include "app/exchange/import_work.h"

#include "app/catalogue/import_columns.h"
#include "app/exchange/source_file.h"

#include <QFileInfo>

#include <optional>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

ImportEnd stopped()
{
    return {ImportEnd::Kind::Cancelled, {}};
}

ImportEnd failure(const QString &words)
{
    return {ImportEnd::Kind::Failed, words};
}

} // namespace

QString endWords(const ImportEnd &end)
{
    if (end.kind != ImportEnd::Kind::Cancelled)
        return u"\u26a0 "_s + end.words;
    return u"Stopped. "_s + (end.words.isEmpty() ? u"Nothing was changed."_s : end.words);
}

Imported<OpenedList> openList(const QString &path, const WorkWatch &watch)
{
    const WorkStep reading{u"The file is being read \u2026"_s, WorkStep::unknown};
    if (!watch(reading))
        return Unexpected(stopped());
    auto file = readList(path);
    if (!file)
        return Unexpected(failure(file.error()));
    const CsvGuess guess = guessForm(file->bytes);
    if (!watch(reading))
        return Unexpected(stopped());
    return OpenedList{*std::move(file), guess};
}

Imported<SettledList> settleList(const ImportDesk &desk, const ImportFile &file, const ImportChoices &choices,
                                 const WorkWatch &watch)
{
    if (!watch({u"The figures are being looked at \u2026"_s, WorkStep::unknown}))
        return Unexpected(stopped());
    SettledList settled;
    settled.decimal = guessDecimalSign(file.bytes, choices.form, choices.kind, choices.columns);
    const auto may = withImport<bool>(desk, watch, [&](CatalogueImport &import, const WorkWatch &) {
        return import.mayImportAsStored(file, choices);
    });
    if (!may)
        return Unexpected(may.error());
    settled.mayBeAsStored = *may;
    return settled;
}

Imported<ImportOutcome> applyList(const ImportDesk &desk, std::int64_t id, bool validRows, const QString &path,
                                  const WorkWatch &watch)
{
    std::optional<ImportFile> now;
    if (QFileInfo::exists(path)) {
        auto read = readImportFile(path);
        if (!read)
            return Unexpected(failure(read.error()));
        now = *std::move(read);
    }
    return withImport<ImportOutcome>(desk, watch, [&](CatalogueImport &import, const WorkWatch &heard) {
        return import.apply(id, validRows, now ? &*now : nullptr, heard);
    });
}

} // namespace harrowby::app
