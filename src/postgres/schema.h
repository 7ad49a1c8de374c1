// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QStringView>

/// The shop's tables on a server. They are made by schema/*.sql, in the order of the files' names; what is said here of
/// them is what the program has to know before it sends something.
namespace harrowby::postgres {

/// harrowby.schema_version() of a server whose tables and functions are those that this program knows.
inline constexpr int schemaVersion = 1;
/// A store of the next hundred is one that programs of this one cannot work with; what is only added stays within it.
inline constexpr int schemaGeneration = 100;

/// Tables and functions of ours stand before the engine's own, so that `like` is ours; nobody's temporary table stands
/// before either.
inline constexpr char searchPath[] = "harrowby, pg_catalog, pg_temp";

/// Identity of a row, the last column of each of the six tables.
inline constexpr char identityColumn[] = "rowid_";

struct ShopTable
{
    QString name;                      ///< as statements write it; capitals do not count
    QStringList columns;               ///< in their order, without the identity
    QStringList figures;               ///< those of them that hold numbers; the others hold texts
    QList<QStringList> indexedColumns; ///< of each index, the texts that stand in one entry of it

    /// Index in `columns`; negative when there is none of that name.
    [[nodiscard]] qsizetype column(QStringView column) const;
    [[nodiscard]] bool isFigure(QStringView column) const;
};

/// The six tables that the component needs.
[[nodiscard]] const QList<ShopTable> &shopTables();
/// Null when it is none of the six.
[[nodiscard]] const ShopTable *shopTable(QStringView name);

} // namespace harrowby::postgres
