// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QLatin1StringView>
#include <QString>
#include <QUtf8StringView>

#include <optional>

namespace harrowby {

inline constexpr QLatin1StringView itemKeySeparator("  |  ");

/// "ID  |  NAME": how one stock item shows in combo boxes, cart lines, receipts and messages.
[[nodiscard]] QString itemKey(const QString &stockId, const QString &stockName);

/// The same in UTF-8, written into `key`, whose capacity is reused. With itemKey() a save that lists every item anew
/// takes 1.34 times its statements instead of 1.21, and the limit is 1.31.
void putItemKey(QByteArray &key, QUtf8StringView stockId, QUtf8StringView stockName);

enum class KeyPiece : short {
    Id = 0,
    Name = 1,
};

/// Piece of an item key: the ID is what stands before the first "  |  ", trimmed, its case kept; the name is
/// what stands after the first " | " and one character more (the key's second blank), trimmed and upper-cased.
/// Empty when the separator is missing.
[[nodiscard]] QString GetIDName(const QString &key, KeyPiece piece);

/// The ID of the item that a reorder is about: what stands before the first "  |  ", blanks and all. It may be empty
/// itself, and then it is an ID. None when the key names no item.
[[nodiscard]] std::optional<QString> reorderedId(const QString &key);

/// The ID by which a cart line's price is looked up: what stands before the first " | ", trimmed, or the whole
/// trimmed text when there is no such separator.
[[nodiscard]] QString costLookupId(const QString &key);

} // namespace harrowby
