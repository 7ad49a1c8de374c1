// SPDX-License-Identifier: MIT
#pragma once

namespace harrowby::app {

/// What the program leaves behind; docs/store-program.md lists the numbers.
enum class ExitCode {
    Done = 0,
    Failed = 1,        ///< an unforeseen error
    WrongUsage = 2,    ///< the command line is refused
    NoDisplay = 3,     ///< no window can be shown
    StoreRefused = 4,  ///< the store file cannot be used
    StoreDeclined = 5, ///< the person did not want to create a new store
    ErrandFailed = 6,  ///< what was to be done without a window was not done
    RowsRefused = 7,   ///< a file to import has rows that cannot be, or a store to copy
};

} // namespace harrowby::app
