// SPDX-License-Identifier: MIT
#pragma once

#include "app/csv/csv_form.h"
#include "basic/result.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <cstdint>

/// What goes into the import of a CSV file, and what comes out of it.
namespace harrowby::app {

enum class ImportKind {
    Items,
    Categories,
    Codes,
};

/// For each column of the file the column of importColumns() that it holds, or -1 for one that is left out.
using ColumnMatch = QList<int>;

struct ImportChoices
{
    ImportKind kind = ImportKind::Items;
    CsvForm form;
    ColumnMatch columns;
    bool hasHeadings = true;      ///< the first line; else it is a row like the others
    bool stockInHand = false;     ///< the stock in hand of items that are there already is set, too
    bool putIntoCapitals = false; ///< names; else those that are not in capitals are refused
    bool makeCategories = true;   ///< that items are to belong to; else such items are refused
    bool asStored = false;        ///< an export goes into an empty table as it stands; only when mayImportAsStored()
};

struct ImportCounts
{
    qint64 fresh = 0; ///< new in the store
    qint64 changed = 0;
    qint64 unchanged = 0;
    qint64 refused = 0;

    [[nodiscard]] qint64 all() const { return fresh + changed + unchanged + refused; }
    friend bool operator==(const ImportCounts &, const ImportCounts &) = default;
};

/// A file that has been compared with the store. Nothing of it is in the store's tables yet.
struct StagedImport
{
    std::int64_t id = 0;
    ImportCounts counts;
    qint64 renamed = 0;        ///< of the changed items those that get another name
    QStringList newCategories; ///< that are made with it, as choices.makeCategories has it
};

/// What came of carrying an import out, or of taking it back.
struct ImportOutcome
{
    ImportCounts done;  ///< the rows that were written
    qint64 leftOut = 0; ///< not written, as the store has changed since; listed as RowFilter::LeftOut
    QString backup;     ///< the copy that was made before; empty when nothing had to be written
};

/// Why there is none.
struct ImportEnd
{
    enum class Kind {
        Cancelled,    ///< nothing is left behind
        FileChanged,  ///< the file is no longer the one of the preview
        RowsRefused,  ///< all rows were asked for, and not all can be written
        StoreChanged, ///< all rows were asked for, and some differ from the preview by now
        Outdated,     ///< another program has carried the import out, or cleared it away
        Failed,
    };
    Kind kind = Kind::Failed;
    QString words; ///< for a person

    friend bool operator==(const ImportEnd &, const ImportEnd &) = default;
};
template <typename T>
using Imported = Result<T, ImportEnd>;

enum class RowFilter {
    All,
    New,
    Changed,
    Unchanged,
    Refused,
    LeftOut,      ///< not written, as the store had changed since the preview
    NotTakenBack, ///< changed since the import, so that taking it back has left them as they are
};

/// A value of a row, by the heading that importColumns() has for it.
struct ImportCell
{
    QString column;
    QString before; ///< empty for a new row
    QString after;

    friend bool operator==(const ImportCell &, const ImportCell &) = default;
};

/// A row of the file, as the list shows it.
struct ImportedRow
{
    qint64 line = 0; ///< of the file, from 1
    RowFilter state = RowFilter::New;
    QString key;             ///< the item's ID, the category, or the code
    QString name;            ///< the item's; empty for the others
    QList<ImportCell> cells; ///< of a new row all values, of a changed one what changes
    QString column;          ///< as the file calls it, where a column is to blame; else empty
    QString reason;          ///< why it was refused, left out or not taken back; else empty
};

/// An import of the past, or one that is staged.
struct PastImport
{
    enum class State {
        Staged,
        Applied,
        TakenBack,
    };
    std::int64_t id = 0;
    ImportKind kind = ImportKind::Items;
    State state = State::Staged;
    QString file; ///< its name without the folder
    QString at;   ///< when it was carried out, as recordTime() writes it
    QString who;
    QString takenBackAt;         ///< empty unless it was
    ImportCounts counts;         ///< of the preview
    bool canBeTakenBack = false; ///< its rows are still kept
};

} // namespace harrowby::app
