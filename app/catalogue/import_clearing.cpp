// SPDX-License-Identifier: MIT
#include "app/catalogue/import_owner.h"
#include "app/catalogue/import_shelf.h"

using namespace Qt::StringLiterals;

/// What goes from the shelf of imports, and when.
namespace harrowby::app {

namespace {

constexpr int rowsInOneDeletion = 5'000;

bool isDone(const ShelvedImport &import)
{
    return import.state == import_state::applied || import.state == import_state::takenBack ||
           import.state == import_state::settled;
}

} // namespace

std::optional<DbFailure> ImportShelf::dropRows(std::int64_t id, const WorkWatch &watch)
{
    const RecordStatement nextLine = {
        u"select Line from HarrowbyImportRow where ImportID = ? order by Line limit 1 offset %1"_s.arg(
            rowsInOneDeletion),
        {id}};
    const auto any =
        m_records.read(kept::import(), {u"select Line from HarrowbyImportRow where ImportID = ? limit 1"_s, {id}});
    if (!any)
        return any.error();
    bool isLast = any->isEmpty();
    while (!isLast) {
        // Whoever waits for it is told; it is done to its end all the same.
        (void)watch({u"What is left of an earlier preview is being cleared away …"_s, WorkStep::unknown});
        const auto next = m_records.read(kept::import(), nextLine);
        if (!next)
            return next.error();
        isLast = next->isEmpty();
        QList<RecordStatement> deletions;
        for (const QString &table : {u"HarrowbyImportCode"_s, u"HarrowbyImportCategory"_s, u"HarrowbyImportRow"_s}) {
            RecordStatement deletion = {u"delete from %1 where ImportID = ?"_s.arg(table), {id}};
            if (!isLast) {
                deletion.text += u" and Line < ?"_s;
                deletion.values << next->constFirst().constFirst();
            }
            deletions << deletion;
        }
        if (const auto dropped = m_records.writeTogether(kept::import(), deletions); !dropped)
            return dropped.error();
    }
    return {};
}

std::optional<DbFailure> ImportShelf::discard(std::int64_t id, const WorkWatch &watch)
{
    // From here on nobody carries it out.
    const auto begun = m_records.write(
        kept::import(), {u"update HarrowbyImport set State = ? where ImportID = ? and State in (?, ?, ?)"_s,
                         {QString(import_state::clearing), id, QString(import_state::staging),
                          QString(import_state::staged), QString(import_state::clearing)}});
    if (!begun)
        return begun.error();
    if (*begun == 0) {
        const auto there = find(id);
        if (!there || *there)
            return there ? std::nullopt : std::optional(there.error());
    }
    if (auto failure = dropRows(id, watch))
        return failure;
    const auto dropped =
        m_records.write(kept::import(), {u"delete from HarrowbyImport where ImportID = ? and State = ?"_s,
                                         {id, QString(import_state::clearing)}});
    return dropped ? std::nullopt : std::optional(dropped.error());
}

/// Nobody takes it back from here on.
std::optional<DbFailure> ImportShelf::settle(const ShelvedImport &import, const WorkWatch &watch)
{
    if (import.state != import_state::settled) {
        const auto settled =
            m_records.write(kept::import(), {u"update HarrowbyImport set State = ? where ImportID = ?"_s,
                                             {QString(import_state::settled), import.id}});
        if (!settled)
            return settled.error();
    }
    return dropRows(import.id, watch);
}

std::optional<DbFailure> ImportShelf::clear(const QDateTime &now, const WorkWatch &watch)
{
    const auto imports = all();
    if (!imports)
        return imports.error();
    int kept = 0;
    for (const ShelvedImport &import : *imports) {
        std::optional<DbFailure> failure;
        const bool isOld = timeOfRecord(import.stagedAt).addDays(1) < now;
        if (!isDone(import)) {
            failure = isOld || !mayLive(import.owner) ? discard(import.id, watch) : std::nullopt;
        } else if (++kept > mostKept) {
            failure = settle(import, watch);
        }
        if (failure)
            return failure;
    }
    return {};
}

} // namespace harrowby::app
