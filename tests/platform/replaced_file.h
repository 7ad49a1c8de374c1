// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

namespace harrowby::testing {

/// Runs `action` once, right after this process has next asked for the facts of a file by its name: whoever looks at a
/// file before opening it then opens another one. The C library's function is replaced by one that knows of this.
void afterNextLookAtAFile(std::function<void()> action);

} // namespace harrowby::testing
