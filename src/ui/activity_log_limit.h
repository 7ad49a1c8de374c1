// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

#include <cstddef>

/// How much of the activity log the window keeps, as a till stays open for weeks: as many of the newest entries as a
/// day has, in bounded memory. The table SysUsage keeps all.
namespace harrowby::activity_log {

inline constexpr std::size_t mostEntries = 5'000;
inline constexpr qsizetype mostBytes = 20'000'000;

/// Bytes of an entry: text, format and lines, measured and rounded up. `activity_log_test` compares it with malloc.
[[nodiscard]] constexpr qsizetype bytesOf(int characters, int paragraphs)
{
    constexpr qsizetype ofParagraph = 700;
    constexpr qsizetype ofCharacter = 8;
    return paragraphs * ofParagraph + characters * ofCharacter;
}

/// Whether the oldest entry has to go. The newest one always stays.
[[nodiscard]] constexpr bool isTooLong(std::size_t entries, qsizetype bytes)
{
    return entries > 1 && (entries > mostEntries || bytes > mostBytes);
}

} // namespace harrowby::activity_log
