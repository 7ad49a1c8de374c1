// SPDX-License-Identifier: MIT
#include "app/catalogue/staging.h"

#include "app/catalogue/category_judge.h"
#include "app/catalogue/code_judge.h"
#include "app/catalogue/import_columns.h"
#include "app/catalogue/item_judge.h"
#include "app/catalogue/storable_rows.h"

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

/// A piece holds the write lock for some milliseconds.
constexpr qsizetype rowsInOnePiece = 1000;

const auto notPreviewed = u"The file was not compared with the store."_s;

ImportEnd stopped()
{
    return {ImportEnd::Kind::Cancelled, u"The preview was cancelled."_s};
}

/// The key, and the name where there is one, as the file has them.
StagedRow unchangedRow(const ImportLine &line)
{
    StagedRow row;
    row.line = line.line;
    row.what = RowKind::Unchanged;
    row.stockId = line.cells.value(0);
    row.fresh[NamePart] = line.cells.value(1);
    return row;
}

StagedRow oneTooMany(const ImportLine &line)
{
    StagedRow row = unchangedRow(line);
    row.what = RowKind::Refused;
    row.reason = u"The file has this row more often than the store."_s;
    return row;
}

} // namespace

Imported<StagedImport> Staging::run(const QDateTime &now)
{
    if (const auto fits = checkMatch(m_choices.kind, m_choices.columns); !fits)
        return Unexpected(ImportEnd{ImportEnd::Kind::Failed, fits.error()});
    if (const auto failure = m_shelf.clear(now, m_watch))
        return Unexpected(importFailed(notPreviewed, *failure));
    ShelvedImport import;
    import.kind = kindText(m_choices.kind);
    import.file = m_file.name();
    import.hash = m_file.hash;
    import.choices = choicesText();
    import.stagedAt = recordTime(now);
    const auto id = m_shelf.begin(import);
    if (!id)
        return Unexpected(importFailed(notPreviewed, id.error()));
    m_staged.id = *id;
    Done done = stage();
    if (done)
        done = kept(m_shelf.finish(*id, m_staged.counts));
    if (done)
        return m_staged;
    // Should this fail, too, the next preview clears it away.
    (void)m_shelf.discard(*id, m_watch);
    return Unexpected(done.error());
}

QString Staging::choicesText() const
{
    QStringList choices;
    if (m_choices.asStored)
        choices << u"as stored"_s;
    if (m_choices.stockInHand)
        choices << u"stock in hand"_s;
    if (m_choices.putIntoCapitals)
        choices << u"capitals"_s;
    return choices.join(u", "_s);
}

Staging::Done Staging::stage()
{
    switch (m_choices.kind) {
    case ImportKind::Categories:
        return stageCategories();
    case ImportKind::Codes:
        return stageCodes();
    default:
        return stageItems();
    }
}

Staging::Done Staging::taken(const Records::Answer<bool> &census) const
{
    if (!census)
        return Unexpected(importFailed(notPreviewed, census.error()));
    if (!*census)
        return Unexpected(stopped());
    return {};
}

Staging::Done Staging::kept(const Records::Answer<bool> &put) const
{
    if (!put)
        return Unexpected(importFailed(notPreviewed, put.error()));
    if (!*put)
        return Unexpected(ImportEnd{ImportEnd::Kind::Outdated,
                                    u"Another office has cleared this preview away. Compare the file with the store "
                                    "again."_s});
    return {};
}

Staging::Done Staging::stageItems()
{
    ImportLines lines(m_file, m_choices);
    KnownCategories categories(m_records);
    KnownCodes codes(m_records);
    KnownCodes *const usedCodes = m_choices.columns.contains(CodeColumn) ? &codes : nullptr;
    ItemCensus census;
    if (!m_choices.asStored) {
        auto failure = categories.load();
        if (!failure && usedCodes != nullptr)
            failure = codes.load();
        if (failure)
            return Unexpected(importFailed(notPreviewed, *failure));
        if (auto done = taken(census.take(m_file, m_choices, usedCodes, m_watch)); !done)
            return done;
    }
    ItemJudge judge(m_records, lines, m_choices, census, categories, usedCodes);
    if (auto done = stageBy(lines, [&](const QList<ImportLine> &piece) { return judge.judge(piece); }); !done)
        return done;
    m_staged.newCategories = categories.made();
    return putNewCategories(categories.made());
}

Staging::Done Staging::stageCodes()
{
    ImportLines lines(m_file, m_choices);
    CodeJudge judge(m_records, lines, m_choices);
    if (auto done = taken(judge.take(m_file, m_watch)); !done)
        return done;
    return stageBy(lines, [&](const QList<ImportLine> &piece) { return judge.judge(piece); });
}

Staging::Done Staging::stageCategories()
{
    ImportLines lines(m_file, m_choices);
    CategoryJudge judge(m_records, lines, m_choices);
    if (auto done = taken(judge.take(m_file, m_watch)); !done)
        return done;
    return stageBy(lines,
                   [&](const QList<ImportLine> &piece) -> Records::Answer<StagedPiece> { return judge.judge(piece); });
}

Staging::Done Staging::stageBy(ImportLines &lines, const Judge &judge)
{
    EqualRows equal(m_records, lines, m_choices);
    QList<ImportLine> piece;
    ImportLine line;
    bool isThere = true;
    while (isThere) {
        isThere = lines.next(line);
        if (isThere)
            piece << line;
        if (piece.isEmpty() || (isThere && piece.size() < rowsInOnePiece))
            continue;
        const auto found = judged(piece, judge, equal);
        if (!found)
            return Unexpected(importFailed(notPreviewed, found.error()));
        if (auto done = kept(m_shelf.put(m_staged.id, *found)); !done)
            return done;
        count(*found);
        piece.clear();
        if (!m_watch({u"The rows are being compared with the store …"_s, lines.percent()}))
            return Unexpected(stopped());
    }
    return {};
}

/// What stands in the store as it is, is unchanged, whatever the judge would say of it. One that he lets pass is not
/// compared again.
Records::Answer<StagedPiece> Staging::judged(const QList<ImportLine> &lines, const Judge &judge, EqualRows &equal) const
{
    StagedPiece same;
    QList<ImportLine> others;
    for (const ImportLine &line : lines) {
        const auto found =
            equal.isOdd(line) ? equal.take(line) : Records::Answer<EqualRows::Found>(EqualRows::Found::None);
        if (!found)
            return Unexpected(found.error());
        if (*found == EqualRows::Found::None)
            others << line;
        else
            same.rows << (*found == EqualRows::Found::Equal ? unchangedRow(line) : oneTooMany(line));
    }
    auto piece = judge(others);
    if (!piece)
        return piece;
    StorableRows(m_records, m_choices.kind).settle(*piece);
    for (qsizetype i = 0; i < piece->rows.size(); ++i) {
        StagedRow &row = piece->rows[i];
        if (row.what != RowKind::Refused && !row.isRepeated)
            continue;
        const auto found = equal.take(others.at(i));
        if (!found)
            return Unexpected(found.error());
        if (*found == EqualRows::Found::Equal)
            row = unchangedRow(others.at(i));
        else if (*found == EqualRows::Found::Taken && row.what == RowKind::Unchanged)
            row = oneTooMany(others.at(i));
    }
    piece->rows << same.rows;
    return piece;
}

Staging::Done Staging::putNewCategories(const QStringList &names)
{
    const StorableRows storable(m_records, ImportKind::Categories);
    StagedPiece piece;
    for (const QString &name : names) {
        if (storable.holdsCategory(name)) // else its rows were refused
            piece.categories << StagedCategory{0, {name, false}, {}};
    }
    return names.isEmpty() ? Done() : kept(m_shelf.put(m_staged.id, piece));
}

void Staging::count(const StagedPiece &piece)
{
    for (const StagedRow &row : piece.rows) {
        switch (row.what) {
        case RowKind::New:
            ++m_staged.counts.fresh;
            break;
        case RowKind::Changed:
            ++m_staged.counts.changed;
            m_staged.renamed += m_choices.kind == ImportKind::Items && (row.mask & maskOf(NamePart)) != 0 ? 1 : 0;
            break;
        case RowKind::Unchanged:
            ++m_staged.counts.unchanged;
            break;
        case RowKind::Refused:
            ++m_staged.counts.refused;
        }
    }
}

} // namespace harrowby::app
