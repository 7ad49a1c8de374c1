// SPDX-License-Identifier: MIT
#pragma once

#include <harrowby/db_value.h>

#include <QByteArrayView>
#include <QString>

#include <optional>

/// What a server's columns hold, and what they cannot. A store file takes any value in any column and any length; the
/// columns of a server are texts or figures.
namespace harrowby::postgres {

/// Most bytes (UTF-8) of the texts that stand in one entry of an index. The server's own limit is near 2,700 with all
/// that an entry holds besides.
inline constexpr qsizetype mostIndexedBytes = 2600;

/// Why the table cannot hold these values (English, one line, begins with a small letter): a text in a figure's column,
/// a NUL, bytes, a whole number that a figure does not hold exactly, texts that are too long for an index. Empty when
/// it can. Of a table that is none of the six, only NUL is refused.
[[nodiscard]] std::optional<QString> unstorable(const QString &table, const DbAssignments &values);

/// The same of a statement with its values in its text: an UPDATE or INSERT. Other statements are never refused.
[[nodiscard]] std::optional<QString> unstorable(const QString &statement);

/// The value as the column will hold it, as a store file converts it: a number as text in a column of texts, the number
/// that a text is in a column of figures. Precondition: it is storable.
[[nodiscard]] DbValue converted(const QString &table, const QString &column, const DbValue &value);

/// Type identifiers of the server, as it sends them with each column of a result.
using TypeId = unsigned int;

/// What the server has sent in text format, not null. Numbers that are whole become integers, as a store file holds
/// them; a type that is not known is a text.
[[nodiscard]] DbValue readValue(QByteArrayView text, TypeId type);
/// Whether values of this type are texts, so that they can be handed on without a copy.
[[nodiscard]] bool isText(TypeId type);

/// Name of a table or column, in small letters and quoted.
[[nodiscard]] QString quotedName(const QString &name);
/// A literal of a statement.
[[nodiscard]] QString literal(const DbValue &value);

/// Statements for rows that are written by column. Precondition: the values are storable.
[[nodiscard]] QString insertText(const QString &table, const DbAssignments &values);
/// Write::note of an insert: a purchase that proves not recorded can be written down by it. Of other rows nothing is
/// kept on this machine.
[[nodiscard]] QString noteOfInsert(const QString &what, const DbAssignments &values);
[[nodiscard]] QString updateText(const QString &table, std::int64_t row, const DbAssignments &values);

} // namespace harrowby::postgres
