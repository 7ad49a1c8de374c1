// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/record_tables.h"

#include <QList>
#include <QString>
#include <QStringList>

namespace harrowby::app {

/// What a column of a server's table holds. A file's holds anything.
enum class ColumnFill {
    Text,
    Figure,      ///< a number of the shop's tables: NUMERIC in a file
    SmallNumber, ///< whole, of 32 bits
    WholeNumber, ///< of 64 bits
    Real,
};

struct CopiedColumn
{
    QString name;
    ColumnFill fill = ColumnFill::Text;
};

/// A table of a store that is copied row by row.
struct CopiedTable
{
    QString name;
    QList<CopiedColumn> columns;
    /// Of the program's own: what makes it, perhaps together with others. Null for the component's six, whose rows have
    /// an identity that is copied with them.
    const RecordTable *made = nullptr;
    QList<QStringList> indexedTexts = {}; ///< of its own tables: for each index, the texts in one entry of it

    [[nodiscard]] bool isShops() const { return made == nullptr; }
    /// For Records, which want to know what is read or written.
    [[nodiscard]] RecordTable records() const;
    [[nodiscard]] QStringList columnNames() const;
};

/// All tables of a store: the component's six and the program's own.
[[nodiscard]] const QList<CopiedTable> &copiedTables();

/// The tables that the statements make, with their columns and indexes. Precondition: they are written as those of
/// record_tables.cpp.
[[nodiscard]] QList<CopiedTable> tablesMadeBy(const RecordTable &table);

} // namespace harrowby::app
