// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

namespace harrowby::testing {

/// Runs `action` once, right after the next stat() of this process: a file that is checked and then opened by name can
/// be replaced in between. The C library's function is replaced by one that runs the action.
void afterNextLookAtAFile(std::function<void()> action);

} // namespace harrowby::testing
