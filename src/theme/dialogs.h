// SPDX-License-Identifier: MIT
#pragma once

#include <QSize>

class QFormLayout;
class QMessageBox;
class QPushButton;
class QWidget;

/// How the windows beside the till are dressed: the office, the report, the list of low items, and the program's boxes.
namespace harrowby {

/// Gives a window the till's theme: touch targets of at least 44 px, accessible interfaces of src/spoken, popups that
/// show their whole list. Follows the application's palette. Called after the window's children have been created.
void dressDialog(QWidget &window);

/// The same for what is built within such a window later; its style and what is spoken come from the window.
void dressPart(QWidget &part);

/// The same for a message box, called after its buttons have been added. Its default button becomes the main one.
void dressBox(QMessageBox &box);

/// Marks the one main button of a form. Called before it is shown.
void makePrimary(QPushButton &button);

/// Sets the window's font, large enough to be read at arm's length. Called before sizes are computed from it.
void enlargeFont(QWidget &window);

/// What a window may take on its screen, with a frame around it.
[[nodiscard]] QSize roomFor(const QWidget &window);

/// Gives the buttons of a window without the till's theme touch size.
void makeTouchSized(QWidget &window);

/// Centres the labels of a form on their fields, where QFormLayout aligns them to the top. Called after the rows have
/// been added, and before they are shown.
void centreCaptions(QFormLayout &form);

} // namespace harrowby
