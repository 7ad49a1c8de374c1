// SPDX-License-Identifier: MIT
#pragma once

/// Dynamic properties by which a host knows the component's window among the windows of its process, and finds what it
/// must not cover with windows of its own. They are set before the window is shown and stay as they are; a host only
/// reads them, on the thread of the windows:
///
///     for (QWidget *window : QApplication::topLevelWidgets())
///         if (window->property(harrowby::SalesWindowProperty).toBool()) …
namespace harrowby {

/// True of the window that Init::LoadInventory() shows. A closed one is gone once its last handler has returned.
inline constexpr char SalesWindowProperty[] = "harrowbySalesWindow";

/// True of the parts of that window which have to stay in sight while they are visible: the totals, the figures of the
/// day, the button that takes the money, and the status bar.
inline constexpr char KeptInSightProperty[] = "harrowbyKeptInSight";

} // namespace harrowby
