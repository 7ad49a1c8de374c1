// SPDX-License-Identifier: MIT
// Nothing of its own: carries what moc makes of the header.
#include "tests/ui/report_double.h"
