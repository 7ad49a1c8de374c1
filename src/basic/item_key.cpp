// SPDX-License-Identifier: MIT
#include "basic/item_key.h"

#include "basic/text.h"

namespace harrowby {

namespace {

constexpr QLatin1StringView narrowSeparator(" | ");

} // namespace

QString itemKey(const QString &stockId, const QString &stockName)
{
    return stockId + itemKeySeparator + stockName;
}

void putItemKey(QByteArray &key, QUtf8StringView stockId, QUtf8StringView stockName)
{
    const auto bytes = [](QUtf8StringView text) {
        return QByteArrayView(reinterpret_cast<const char *>(text.data()), text.size());
    };
    key.resize(0); // keeps the capacity, which clear() frees
    key.append(bytes(stockId)).append(itemKeySeparator.data(), itemKeySeparator.size()).append(bytes(stockName));
}

QString GetIDName(const QString &key, KeyPiece piece)
{
    if (piece != KeyPiece::Name) {
        const qsizetype end = key.indexOf(itemKeySeparator);
        return end < 0 ? QString() : trimBlanks(QStringView(key).first(end));
    }
    const qsizetype found = key.indexOf(narrowSeparator);
    // Intended: one character more than the separator is dropped, whatever it is: a key has two blanks after its bar.
    return found < 0 ? QString() : trimmedUpper(key.mid(found + narrowSeparator.size() + 1));
}

std::optional<QString> reorderedId(const QString &key)
{
    const qsizetype end = key.indexOf(itemKeySeparator);
    if (end < 0 || trimBlanks(key).isEmpty())
        return {};
    return key.left(end);
}

QString costLookupId(const QString &key)
{
    const qsizetype end = key.indexOf(narrowSeparator);
    return trimBlanks(end < 0 ? QStringView(key) : QStringView(key).first(end));
}

} // namespace harrowby
