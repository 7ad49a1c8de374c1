// SPDX-License-Identifier: MIT
#pragma once

/// Dynamic properties (QObject::property(), of type bool) by which a host finds the component's window among the
/// windows of its process, and the parts of it that it must not cover with its own windows. They are set before the
/// part is shown and never change; a host only reads them, on the user-interface thread:
///
///     for (QWidget *window : QApplication::topLevelWidgets())
///         if (window->property(harrowby::SalesWindowProperty).toBool()) …
namespace harrowby {

/// True for the window that Init::LoadInventory() shows. After closing, that window is destroyed once its last handler
/// has returned, so keep it in a QPointer.
inline constexpr char SalesWindowProperty[] = "harrowbySalesWindow";

/// True for the parts of that window that must not be covered while they are visible: the totals, the day's figures,
/// the button "Purchase Cart", and the status bar; also a host's own buttons and banner (harrowby/counter.h), set when
/// they are made.
inline constexpr char KeptInSightProperty[] = "harrowbyKeptInSight";

} // namespace harrowby
