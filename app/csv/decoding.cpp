// SPDX-License-Identifier: MIT
#include "app/csv/decoding.h"

#include <QStringDecoder>

#include <array>

namespace harrowby::app {

namespace {

/// 0x80 to 0x9F of Windows-1252, 0 where it has none; Qt has no such decoder on every system.
constexpr std::array<char16_t, 32> upperControls = {0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                                    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0,      0x017D, 0,
                                                    0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                                    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

bool decodeWindows(QString &text, QByteArrayView bytes)
{
    bool isValid = true;
    text.resize(bytes.size());
    QChar *to = text.data();
    for (const char byte : bytes) {
        auto unit = static_cast<char16_t>(static_cast<unsigned char>(byte));
        if (unit >= 0x80 && unit < 0xA0)
            unit = upperControls[unit - 0x80U];
        if (unit == 0 && byte != 0) {
            isValid = false;
            unit = QChar::ReplacementCharacter;
        }
        *to++ = unit;
    }
    return isValid;
}

bool decodeUtf8(QString &text, QByteArrayView bytes)
{
    // QString::fromUtf8() drops a U+FEFF at the beginning, and does not tell what was invalid.
    using Flag = QStringDecoder::Flag;
    QStringDecoder decoder(QStringDecoder::Utf8, Flag::Stateless | Flag::ConvertInitialBom);
    text.resize(decoder.requiredSpace(bytes.size()));
    const QChar *const end = decoder.appendToBuffer(text.data(), bytes);
    text.truncate(end - text.constData());
    return !decoder.hasError();
}

void appendUtf8(QByteArray &utf8, char32_t character)
{
    const auto tail = [&](int shift) { utf8.append(static_cast<char>(0x80U | ((character >> shift) & 0x3FU))); };
    if (character < 0x80) {
        utf8.append(static_cast<char>(character));
    } else if (character < 0x800) {
        utf8.append(static_cast<char>(0xC0U | (character >> 6)));
        tail(0);
    } else if (character < 0x10000) {
        utf8.append(static_cast<char>(0xE0U | (character >> 12)));
        tail(6);
        tail(0);
    } else {
        utf8.append(static_cast<char>(0xF0U | (character >> 18)));
        tail(12);
        tail(6);
        tail(0);
    }
}

} // namespace

bool isUtf8(QByteArrayView bytes)
{
    return bytes.isValidUtf8();
}

qsizetype characterLength(QByteArrayView bytes)
{
    const auto lead = static_cast<unsigned char>(bytes.front());
    const qsizetype length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC0 ? 2 : 1;
    return length <= bytes.size() && isUtf8(bytes.first(length)) ? length : 0;
}

bool decodeBytes(QString &text, QByteArrayView bytes, CsvEncoding encoding)
{
    return encoding == CsvEncoding::Windows1252 ? decodeWindows(text, bytes) : decodeUtf8(text, bytes);
}

QByteArray utf8FromUtf16(QByteArrayView bytes, CsvEncoding encoding)
{
    const qsizetype low = encoding == CsvEncoding::Utf16LittleEndian ? 0 : 1;
    const auto unitAt = [&](qsizetype at) {
        const auto byte = [&](qsizetype i) { return static_cast<unsigned char>(bytes[i]); };
        return static_cast<char16_t>(byte(at + low) | byte(at + 1 - low) << 8);
    };
    QByteArray utf8;
    utf8.reserve(bytes.size());
    qsizetype at = 0;
    for (; at + 1 < bytes.size(); at += 2) {
        const char16_t unit = unitAt(at);
        const bool isPair =
            QChar::isHighSurrogate(unit) && at + 3 < bytes.size() && QChar::isLowSurrogate(unitAt(at + 2));
        appendUtf8(utf8, isPair ? QChar::surrogateToUcs4(unit, unitAt(at + 2)) : static_cast<char32_t>(unit));
        at += isPair ? 2 : 0;
    }
    if (at < bytes.size())
        utf8.append('\xFF');
    return utf8;
}

} // namespace harrowby::app
