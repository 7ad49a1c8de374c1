// SPDX-License-Identifier: MIT
#pragma once

#include "app/export/export.h"

#include <QByteArrayView>

namespace harrowby::app {

/// Makes a file of the bytes, which gets its name when it is whole. The end tells no rows.
[[nodiscard]] ExportEnd putIntoPlace(QByteArrayView bytes, const QString &target, const WorkWatch &watch);

} // namespace harrowby::app
