// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

namespace harrowby::app::test {

/// While it lives, SQLite fails to read or write the files of this name. One at a time.
class BadDisk
{
public:
    enum class Fault {
        Read,   ///< reading fails
        Write,  ///< writing fails
        Forget, ///< something else is written
    };

    BadDisk(const QByteArray &name, Fault fault);
    ~BadDisk();
    BadDisk(const BadDisk &) = delete;
    BadDisk &operator=(const BadDisk &) = delete;
};

} // namespace harrowby::app::test
