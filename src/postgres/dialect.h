// SPDX-License-Identifier: MIT
#pragma once

#include "basic/result.h"

#include <harrowby/db_value.h>

#include <QList>
#include <QString>

/// Statements are written once, in the dialect of a store file. Here they become what the server takes for the same,
/// with the same rows in the same order. Pure functions; what stands in literals is never touched.
namespace harrowby::postgres {

/// How the till's search, `UPPER(column) like '*TEXT*'`, is carried out.
enum class Search {
    AsWritten, ///< the asterisks are characters like any other
    Anywhere,  ///< by harrowby_finds(): the text may stand anywhere in the column
};

/// The text to send, or why it is refused before it is sent (English, one line).
using ServerText = Result<QString, QString>;

/// Exactly one SELECT. `Limit a, b`, `like a escape b` and a derived table without a name are put as the server has
/// them, and quoted names become small letters. Rows come in the order in which a store file yields them: nulls are the
/// smallest values, rows that an order leaves equal come as they were added, and a list without an order gets that of
/// the file's index. A `Select *` yields the row's identity (identityColumn) in its last column.
[[nodiscard]] ServerText selectText(const QString &statement, Search search = Search::AsWritten);

/// Whether the till's search is in this SELECT, so that Search makes a difference to it.
[[nodiscard]] bool searches(const QString &select);

/// The SELECT whose one value is the number of rows that this one yields; nothing is sorted for it.
[[nodiscard]] ServerText countText(const QString &select, Search search = Search::AsWritten);

/// Exactly one UPDATE, INSERT or DELETE, whose values the server can store (storable.h).
[[nodiscard]] ServerText changeText(const QString &statement);

/// The statement with its values as literals: the next one for each "?", the n-th one for "?n". Refused when there are
/// too few or too many. What comes out is one of a store file still, for the functions above.
[[nodiscard]] ServerText withValues(const QString &statement, const QList<DbValue> &values);

} // namespace harrowby::postgres
