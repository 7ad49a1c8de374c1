// SPDX-License-Identifier: MIT
#pragma once

#include <harrowby/export.h>

#include <QString>

#include <functional>

/// Failures in the files that the component keeps outside the database: receipts and the saved settings. The component
/// shows the user nothing and goes on, as with a failed statement; a handler tells the host.
namespace harrowby {

struct FileFailure
{
    enum class Kind {
        Receipt,       ///< a receipt could be written to no folder: it is neither printed nor kept
        SettingsRead,  ///< the settings file cannot be read: the defaults are used, and nothing is saved
        SettingsWrite, ///< a setting was not saved: the file is unchanged
    };

    Kind kind = Kind::Receipt;
    QString path;        ///< absolute path of the file; for a receipt, of the receipts folder
    QString reason;      ///< the system's error text; empty when isOver
    bool isOver = false; ///< not a failure: the first success of this kind after one or more failures
};

/// Must not throw, enter an event loop, print a receipt, or read or save a setting.
using FileFailureHandler = std::function<void(const FileFailure &)>;

/// Sets the process's one handler; an empty one switches it off. It is called on the user-interface thread with each
/// failure as it happens, and once when that kind of step works again. Needs no QApplication. Never throws.
HARROWBY_EXPORT void setFileFailureHandler(FileFailureHandler handler) noexcept;

} // namespace harrowby
