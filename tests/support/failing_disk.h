// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// The disk below one folder, of which an operation fails: opening, making, writing, cutting, syncing, linking or
/// renaming a file there, or making a folder. The C library's functions are replaced by ones that look at the path, so
/// whatever in this process writes a file is met by it, the engine and Qt too. Syncs that do not fail do nothing, as no
/// power cut is waited for.
namespace harrowby::test::FailingDisk {

enum class Mode {
    Once,    ///< a passing fault
    Forever, ///< from that operation on
};

/// The folder that the disk is; operations elsewhere neither fail nor count.
void mount(const QString &folder);
/// Lets the `operation`-th operation from now on (1-based) fail with the error (ENOSPC, EIO, EACCES); 0 for none.
void failAt(int operation, Mode mode, int error);
/// Operations that have failed since.
[[nodiscard]] int failures();
/// What the first of them was: "write /path".
[[nodiscard]] QString firstFailure();

} // namespace harrowby::test::FailingDisk
