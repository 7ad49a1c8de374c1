// SPDX-License-Identifier: MIT
#include "platform/printers.h"

namespace harrowby {

Printer::~Printer() = default;

Printers::~Printers() = default;

} // namespace harrowby
