// SPDX-License-Identifier: MIT
#pragma once

#include "app/catalogue/import_types.h"
#include "app/csv/csv_guess.h"
#include "app/records/records.h"

#include <QByteArrayView>
#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>

#include <optional>

/// Which column of a file is which of the store.
namespace harrowby::app {

/// All of them, in the order in which they are offered.
[[nodiscard]] const QList<ImportKind> &importKinds();

struct ImportColumn
{
    QString name;  ///< as exports head it: "StockCost"
    QString words; ///< for a person: "Unit cost"
    bool isFigure = false;
};

/// Those that a file can bring, in the order in which they are offered.
[[nodiscard]] const QList<ImportColumn> &importColumns(ImportKind kind);
/// The place of such a column, by its name.
[[nodiscard]] int importColumn(ImportKind kind, const QString &name);

/// The kind that most of the headings speak of.
[[nodiscard]] ImportKind guessKind(const QStringList &headings);

/// Whether the first line of a file can hardly be its headings: no column of any kind is called so, and figures stand
/// in it. It may be a row then, see ImportChoices::hasHeadings.
[[nodiscard]] bool looksLikeARow(const QStringList &headings);
/// What columns without headings are called: "Column 1", "Column 2" and so on.
[[nodiscard]] QStringList numberedHeadings(qsizetype count);
/// By the store's own names and the usual words of English, German, French and Spanish, in any order and case. Of
/// several headings that fit one column it takes the likeliest: a price that the customer pays before a plain "Cost",
/// which may be what the shop pays, and what speaks of buying never.
[[nodiscard]] ColumnMatch matchColumns(ImportKind kind, const QStringList &headings);

/// A column that several headings fit. Somebody has to say which of them it is.
struct ColumnDoubt
{
    int column = 0;      ///< of importColumns()
    QList<int> headings; ///< their places in the file, from 0; the likeliest first

    friend bool operator==(const ColumnDoubt &, const ColumnDoubt &) = default;
};
[[nodiscard]] QList<ColumnDoubt> columnDoubts(ImportKind kind, const QStringList &headings);
/// Why the rows cannot be read by it, in words for a person: a column twice, or none that says which row is which.
[[nodiscard]] Result<void, QString> checkMatch(ImportKind kind, const ColumnMatch &match);

/// The columns of the file, from 0, that hold figures, for guessDecimalSign().
[[nodiscard]] QSet<int> figureColumns(ImportKind kind, const ColumnMatch &match);
/// The file's decimal sign by these columns alone; an export of our own leaves nothing open.
[[nodiscard]] DecimalGuess guessDecimalSign(QByteArrayView bytes, const CsvForm &form, ImportKind kind,
                                            const ColumnMatch &match);

/// What was chosen by hand, for each header that was met.
class RememberedColumns
{
public:
    /// The records must outlive it.
    explicit RememberedColumns(Records &records) : m_records(records) {}

    /// Nothing for a header that is new, or when the settings cannot be read.
    [[nodiscard]] std::optional<ColumnMatch> match(ImportKind kind, const QStringList &headings) const;
    /// Of what matchColumns() finds by itself, without a doubt, nothing is kept.
    std::optional<DbFailure> remember(ImportKind kind, const QStringList &headings, const ColumnMatch &match);

private:
    Records &m_records;
};

} // namespace harrowby::app
