// SPDX-License-Identifier: MIT
#pragma once

#include "app/csv/csv_form.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

namespace harrowby::app {

inline constexpr QByteArrayView utf8Mark("\xEF\xBB\xBF"); ///< U+FEFF

[[nodiscard]] inline bool isUtf16(CsvEncoding encoding)
{
    return encoding == CsvEncoding::Utf16LittleEndian || encoding == CsvEncoding::Utf16BigEndian;
}

/// Whether all of it is valid UTF-8, a byte order mark included.
[[nodiscard]] bool isUtf8(QByteArrayView bytes);

/// The length of the valid UTF-8 character at the beginning of these bytes, of which there are some; 0 when there is
/// none.
[[nodiscard]] qsizetype characterLength(QByteArrayView bytes);

/// Decodes UTF-8 or Windows-1252; false when a byte is none of the encoding, and U+FFFD stands there. A U+FEFF at the
/// beginning stays.
[[nodiscard]] bool decodeBytes(QString &text, QByteArrayView bytes, CsvEncoding encoding);

/// UTF-16 as UTF-8. Halves of characters and a half unit at the end become bytes that are no UTF-8.
[[nodiscard]] QByteArray utf8FromUtf16(QByteArrayView bytes, CsvEncoding encoding);

} // namespace harrowby::app
