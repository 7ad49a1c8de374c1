// SPDX-License-Identifier: MIT
// Only for moc's code of the header.
#include "tests/ui/report_double.h"
