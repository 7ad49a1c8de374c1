// SPDX-License-Identifier: MIT
#pragma once

#include "app/csv/csv_writer.h"

#include <harrowby/db_value.h>

#include <QByteArrayView>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace harrowby::app {

/// What a column usually holds. Whatever else is in it is named in the last column of an export, "As Stored".
enum class ColumnKind {
    Text,
    Figure,
};

struct StoredColumn
{
    QString name;
    ColumnKind kind = ColumnKind::Text;
};

/// The heading of the last column of an export of a table. Its cells name what the row's other cells cannot say, as
/// "StockCost:null StockName:escaped", and are empty for a usual row:
///
/// | word     | the column holds                  | its cell                                                      |
/// |----------|-----------------------------------|---------------------------------------------------------------|
/// | null     | null                              | empty                                                         |
/// | text     | a text where figures are usual    | the text                                                      |
/// | integer  | an integer where texts are usual  | the integer                                                   |
/// | real     | a real where texts are usual      | the figure                                                    |
/// | infinite | an infinite real                  | inf or -inf                                                   |
/// | blob     | bytes                             | 0x and two digits a byte                                      |
/// | escaped  | a text with NULs or with bytes    | the text, each such byte as \xHH and each backslash as \\     |
/// |          | that are no UTF-8                 |                                                               |
[[nodiscard]] const QString &asStoredHeading();

/// A value out of a cell.
struct StoredValue
{
    DbValue value;
    bool isText = false; ///< `value` holds bytes that stand in the store as a text: "cast(? as text)" writes them so
};

/// Writes the cells of a row of a table, and then what "As Stored" says of them.
class StoredRowWriter
{
public:
    /// The writer must outlive it.
    explicit StoredRowWriter(CsvWriter &out) : m_out(out) {}

    void value(const StoredColumn &column, const DbValue &value);
    /// A text as the engine has it, whatever its bytes are.
    void text(const StoredColumn &column, QByteArrayView utf8);
    /// Writes the last cell, and ends the row.
    void end();

private:
    void mark(const StoredColumn &column, const QString &word);

    CsvWriter &m_out;
    QStringList m_marks;
};

/// The columns' names, and "As Stored" behind them.
[[nodiscard]] QStringList exportHeadings(const QList<StoredColumn> &columns);

/// Whether these are the headings of an export of a table, in its order, with "As Stored" as the last.
[[nodiscard]] bool isExportOf(const QStringList &headings, const QList<StoredColumn> &columns);

/// Whether they are some of these headings and no others: an export of which a person has deleted columns.
[[nodiscard]] bool isPartOfExport(const QStringList &headings, const QList<StoredColumn> &columns);

/// The decimal sign of the first figure of such a row that has one; nothing when none has. A sign within a figure of an
/// export is always the decimal one.
[[nodiscard]] std::optional<QChar> decimalSignOfStoredRow(const QStringList &cells, const QList<StoredColumn> &columns);

/// The very values of a row of such a file (its cells, without those of a fault), or nothing when its last cell, or
/// what it says of another one, cannot be understood; `faultyColumn` is that column then, from 0.
[[nodiscard]] std::optional<QList<StoredValue>> readStoredRow(const QStringList &cells,
                                                              const QList<StoredColumn> &columns, QChar decimalSign,
                                                              int *faultyColumn = nullptr);

/// The first column of such a row whose cell stands for bytes that are no text, from 0; -1 when none does. What else
/// the row holds does not matter.
[[nodiscard]] int columnOfBytes(const QStringList &cells, const QList<StoredColumn> &columns);

/// Those whose export has these headings, or null.
[[nodiscard]] const QList<StoredColumn> *columnsOfExport(const QStringList &headings);

/// The columns of the tables that are exported, as the store has them.
[[nodiscard]] const QList<StoredColumn> &itemColumns();     ///< of StockList
[[nodiscard]] const QList<StoredColumn> &categoryColumns(); ///< of InventoryCategory
[[nodiscard]] const QList<StoredColumn> &codeColumns();     ///< of HarrowbyCode
[[nodiscard]] const QList<StoredColumn> &purchaseColumns(); ///< of PurchaseCart

} // namespace harrowby::app
