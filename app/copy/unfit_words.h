// SPDX-License-Identifier: MIT
#pragma once

#include "app/copy/store_copy.h"

namespace harrowby::app {

/// The rows that a server cannot hold, each in a line of its own, and how many there are besides: for a person.
[[nodiscard]] QString unfitWords(const UnfitRows &unfit, qsizetype most);

} // namespace harrowby::app
