// SPDX-License-Identifier: MIT
#pragma once

class QMainWindow;
class QWidget;

namespace harrowby {

struct Controls;

// The places for a host's own widgets. Each is made when it is first used; until then the window is as it is without.

/// Adds a button between the title and the window's own actions. The title gives way where the row is too narrow.
void addHostButton(QMainWindow &form, const Controls &controls, QWidget *button);

/// Puts a widget above the cart's total and deletes the one that was there; null leaves the place empty.
void setHostBanner(QMainWindow &form, const Controls &controls, QWidget *banner);

} // namespace harrowby
