// SPDX-License-Identifier: MIT
#include "basic/logging.h"

namespace harrowby {

Q_LOGGING_CATEGORY(lcStore, "harrowby.store", QtFatalMsg)
Q_LOGGING_CATEGORY(lcPrint, "harrowby.print", QtFatalMsg)
Q_LOGGING_CATEGORY(lcSettings, "harrowby.settings", QtFatalMsg)
Q_LOGGING_CATEGORY(lcWindow, "harrowby.window", QtFatalMsg)

} // namespace harrowby
