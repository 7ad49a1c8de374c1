// SPDX-License-Identifier: MIT
#pragma once

namespace harrowby::app::test {

/// Runs the part of the guard's test in which no loss may be reported. Returns the number of failures.
[[nodiscard]] int runPeaceTest(int argc, char **argv);

} // namespace harrowby::app::test
