// SPDX-License-Identifier: MIT
#pragma once

#include <harrowby/export.h>

#include <QString>

#include <functional>

/// The files that the component keeps outside the database: receipts and the saved settings. A step that fails there is
/// skipped without a word to the user, as a failed statement is; this is how a host learns of it.
namespace harrowby {

struct FileFailure
{
    enum class Kind {
        Receipt,       ///< a receipt could be written nowhere, so it is not printed either: it is lost
        SettingsRead,  ///< the saved settings cannot be read: the defaults count, and nothing is saved
        SettingsWrite, ///< a saved setting was not written: the file keeps what it had
    };

    Kind kind = Kind::Receipt;
    QString path;        ///< the file, or for a receipt the folder that it belongs into
    QString reason;      ///< the system's own words; empty when it is over
    bool isOver = false; ///< no failure: the same kind of step has worked again, for the first time after failures
};

/// Must not throw, enter an event loop, print a receipt or save a setting.
using FileFailureHandler = std::function<void(const FileFailure &)>;

/// Asks to be told of every failure as it happens, and once when it is over, on the user-interface thread. One handler
/// for the process; an empty one switches it off. Never throws.
HARROWBY_EXPORT void setFileFailureHandler(FileFailureHandler handler) noexcept;

} // namespace harrowby
