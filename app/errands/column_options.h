// SPDX-License-Identifier: MIT
#pragma once

#include "app/catalogue/import_columns.h"
#include "basic/result.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

/// Which columns of a file an import on the command line takes.
namespace harrowby::app {

/// "StockCost=Price": a column of the store, and what the file calls it; empty for a column that is left alone.
struct GivenColumn
{
    QString column;
    QString heading;

    friend bool operator==(const GivenColumn &, const GivenColumn &) = default;
};

/// Of "StockCost=Price,StockName=Item"; or what is wrong with it.
[[nodiscard]] Result<QList<GivenColumn>, QString> readColumns(const QString &value);

/// What was given, else remembered, else found; or why it cannot be told, in words for a person.
[[nodiscard]] Result<ColumnMatch, QString> columnsFor(ImportKind kind, const QStringList &headings,
                                                      const std::optional<ColumnMatch> &remembered,
                                                      const QList<GivenColumn> &given);

/// Lines of "StockCost ← Price", and which columns of the file are not used.
[[nodiscard]] QString columnWords(ImportKind kind, const QStringList &headings, const ColumnMatch &match);

} // namespace harrowby::app
