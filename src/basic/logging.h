// SPDX-License-Identifier: MIT
#pragma once

#include <QLoggingCategory>

// What fails is silent towards the user by design, never towards a developer: every skipped step is logged in one
// of these categories. All are off until a rule switches them on, for example
// QT_LOGGING_RULES="harrowby.*=true".
namespace harrowby {

Q_DECLARE_LOGGING_CATEGORY(lcStore)    // "harrowby.store": statements that failed
Q_DECLARE_LOGGING_CATEGORY(lcPrint)    // "harrowby.print": receipts that could not be handed over
Q_DECLARE_LOGGING_CATEGORY(lcSettings) // "harrowby.settings": saved settings that could not be read or written
Q_DECLARE_LOGGING_CATEGORY(lcWindow)   // "harrowby.window": steps of the window that were skipped

} // namespace harrowby
