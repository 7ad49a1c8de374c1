// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// Lets a disk operation below one folder fail: opening, creating, writing, truncating, syncing, linking or renaming a
/// file, or creating a folder. Replaces the C library's functions, so it applies to SQLite and Qt too. Syncs that are
/// not to fail do nothing, as no test survives a power cut.
namespace harrowby::test::FailingDisk {

enum class Mode {
    Once,    ///< a passing fault
    Forever, ///< from that operation on
};

/// Sets the folder; operations elsewhere neither fail nor count.
void mount(const QString &path);
/// Lets the `operation`-th operation from now on (1-based) fail with the error (ENOSPC, EIO, EACCES); 0 for none.
void failAt(int operation, Mode mode, int error);
/// Operations that have failed since the last failAt().
[[nodiscard]] int failures();
/// What the first of them was: "write /path".
[[nodiscard]] QString firstFailure();

} // namespace harrowby::test::FailingDisk
