// SPDX-License-Identifier: MIT
#pragma once

#include "platform/print_deadlines.h"

#include <QString>

namespace harrowby {

/// How the print service is spoken to: the helper programs, and how long each may take.
struct PrintOptions : PrintDeadlines
{
    QString printProgram = QStringLiteral("lp");
    QString listProgram = QStringLiteral("lpstat");
};

} // namespace harrowby
