// SPDX-License-Identifier: MIT
#pragma once

#include <QDir>
#include <QFileInfo>
#include <QString>

namespace harrowby::app::test {

/// In memory, where there is such a folder, else where temporary files lie: for what is synced.
[[nodiscard]] inline QString quickFolder()
{
    const auto memory = QStringLiteral("/dev/shm");
    return QFileInfo(memory).isWritable() ? memory : QDir::tempPath();
}

} // namespace harrowby::app::test
