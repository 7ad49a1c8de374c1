// SPDX-License-Identifier: MIT
#pragma once

namespace harrowby {

struct Controls;

/// Switches off the controls whose handlers are still to come. Tabs and lists stay as they are.
void disableUnbuilt(const Controls &controls);

} // namespace harrowby
