// SPDX-License-Identifier: MIT
#pragma once

class QFormLayout;
class QMessageBox;
class QPushButton;
class QWidget;

/// How the windows beside the till are dressed: the office, the report, the list of low items, and the program's boxes.
namespace harrowby {

/// Dresses a window like the till: everything that is touched is at least 44 px high, a screen reader hears what is so,
/// lists drop down in full. Follows the application's palette. Once its parts are in.
void dressDialog(QWidget &window);

/// The same for a box, whose text is plain. Its default button, if any, becomes its main one. Once it has its buttons.
void dressBox(QMessageBox &box);

/// The one main button of a form. Before it is shown.
void makePrimary(QPushButton &button);

/// Letters that are read at arm's length. For a window, before its parts are measured.
void enlargeFont(QWidget &window);

/// Makes the buttons within large enough for a thumb, in a window that does not wear the till's look.
void makeTouchSized(QWidget &window);

/// Puts the captions of a form into the middle of their entries. A form's own layout would have them above it.
/// Once the rows are in, and before they are shown.
void centreCaptions(QFormLayout &form);

} // namespace harrowby
