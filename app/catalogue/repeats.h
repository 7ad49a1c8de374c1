// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

namespace harrowby::app {

/// How often a key stands in a file.
struct Repeats
{
    int rows = 0;
    qint64 firstLine = 0;

    void count(qint64 line)
    {
        if (rows++ == 0)
            firstLine = line;
    }
};

} // namespace harrowby::app
