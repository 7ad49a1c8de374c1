// SPDX-License-Identifier: MIT
#pragma once

#include "app/copy/column_rules.h"
#include "app/copy/row_sums.h"
#include "app/records/records.h"
#include "app/work/work_step.h"
#include "basic/result.h"

#include <QList>
#include <QSet>
#include <QString>

namespace harrowby::app {

/// Why a copy was not made.
struct CopyFailure
{
    QString problem;        ///< in words for a person, where it was not stopped
    bool stopped = false;   ///< the watch wanted no more
    bool isUnknown = false; ///< nobody can say whether it was made after all
    bool isOfCopy = false;  ///< the store that is written has failed, not the one that is read
    int engineCode = 0;     ///< see DbFailure
    QString advice = {};    ///< what to do about it, a sentence; may be empty
};

/// Of a store's failure. `where` stands before the reason: the table, for example.
[[nodiscard]] CopyFailure copyFailureOf(const DbFailure &failure, const QString &where = {});

/// What a step that compares is called.
inline constexpr QStringView comparingWords = u"The copy is being compared \u2026";

/// A row that a server cannot hold.
struct UnfitRow
{
    QString table;
    QString row; ///< how a person finds it: "row 12, TEA-0001"
    QString reason;
};

struct UnfitRows
{
    QList<UnfitRow> first; ///< as many as anybody would read
    std::int64_t count = 0;
};

/// Reads all rows of a store, which nobody changes meanwhile, and writes them to another. Reads and writes go through
/// the records of both; who calls sees to the transactions.
class StoreCopy
{
public:
    /// All of them must outlive it.
    StoreCopy(Records &from, const ColumnRules &rules, const WorkWatch &watch);

    /// Looks at every row.
    [[nodiscard]] Result<UnfitRows, CopyFailure> unfitRows();

    /// Copies all rows with their identities, reads what the other store holds then, and compares. Its tables are
    /// empty; but where a table is only ever added to, rows of which it has the key already are left as they are. The
    /// rows that it holds now, by table.
    [[nodiscard]] Result<QHash<QString, std::int64_t>, CopyFailure> copyInto(Records &to);

private:
    using Rows = QList<RecordRow>;
    using TakeRow = std::function<bool(const RecordRow &row)>;

    [[nodiscard]] std::optional<CopyFailure> count();
    [[nodiscard]] std::optional<CopyFailure> readTable(Records &store, const CopiedTable &table, const QString &words,
                                                       const TakeRow &take);
    [[nodiscard]] std::optional<CopyFailure> readKept(Records &to, const CopiedTable &table);
    [[nodiscard]] std::optional<CopyFailure> copyTable(Records &to, const CopiedTable &table);
    [[nodiscard]] std::optional<CopyFailure> compare(Records &to);
    [[nodiscard]] bool goesOn(const QString &words);

    Records &m_from;
    const ColumnRules &m_rules;
    WorkWatch m_watch;
    std::int64_t m_all = -1;  ///< rows
    std::int64_t m_done = 0;  ///< of this step
    RowSums m_sums;           ///< of what the other store is to hold
    QSet<QByteArray> m_there; ///< keys of the rows that a table has already
};

/// Tables and columns of a store file that are neither the component's nor the program's, and so are not copied; as
/// "table X", "column Y of Z".
[[nodiscard]] Result<QStringList, CopyFailure> foreignParts(Records &file);

} // namespace harrowby::app
