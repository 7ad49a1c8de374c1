// SPDX-License-Identifier: MIT
#pragma once

namespace harrowby::app {

/// The whole program. Its exit code: app/start/exit_code.h.
[[nodiscard]] int runStoreProgram(int argc, char **argv) noexcept;

} // namespace harrowby::app
