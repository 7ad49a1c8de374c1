// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace harrowby::app {

/// Says why the program does not start: in the terminal, and in a box when somebody can see one.
void tellProblem(const QString &text);

/// Says something worth knowing in a box, when somebody can see one.
void showMessage(const QString &text);

/// Prints to the terminal.
void printOut(const QString &text);
void printError(const QString &text);

} // namespace harrowby::app
