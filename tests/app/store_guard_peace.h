// SPDX-License-Identifier: MIT
#pragma once

namespace harrowby::app::test {

/// Runs the second half of the guard's test: no loss is seen where there is none. Returns the number of failures.
[[nodiscard]] int runPeaceTest(int argc, char **argv);

} // namespace harrowby::app::test
