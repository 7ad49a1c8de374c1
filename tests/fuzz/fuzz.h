// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QUtf8StringView>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

/// What every target is: looks at one input, and ends the process when something does not hold.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

namespace harrowby::fuzz {

inline QByteArray asBytes(const std::uint8_t *data, std::size_t size)
{
    return {reinterpret_cast<const char *>(data), static_cast<qsizetype>(size)};
}

/// As text read from a database or file: valid UTF-16, any characters.
inline QString asText(const std::uint8_t *data, std::size_t size)
{
    return QString::fromUtf8(asBytes(data, size));
}

inline void demand(bool holds, const char *what)
{
    if (holds)
        return;
    std::fprintf(stderr, "Does not hold: %s\n", what);
    std::abort();
}

} // namespace harrowby::fuzz
