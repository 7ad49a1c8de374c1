// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace harrowby::app {

/// What the engines have no common word for. Statements are written with these pieces where plain SQL has none.
struct RecordDialect
{
    QString rowId; ///< column of the component's six tables that identifies a row, for statements of the program's own

    /// An expression that is a text, where a figure is wanted: to be compared with or put into a column of figures.
    QString (*figure)(const QString &expression);
};

} // namespace harrowby::app
