// SPDX-License-Identifier: MIT
#pragma once

/// A SQLite VFS over the usual one, in which one write, truncation or sync fails, or every one from it on.
namespace harrowby::FaultyVfs {

enum class Mode {
    Once,    ///< a passing fault
    Forever, ///< a disk that stays full
};

/// The name to open a file with. Registers the VFS the first time.
const char *name();
/// Lets the `operation`-th operation from now on fail (1-based); 0 for none.
void failAt(int operation, Mode mode = Mode::Once);
/// Operations that have failed since.
int failures();

} // namespace harrowby::FaultyVfs
