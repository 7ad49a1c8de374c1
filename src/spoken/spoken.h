// SPDX-License-Identifier: MIT
#pragma once

class QLabel;
class QString;
class QWidget;

namespace harrowby {

/// Replaces Qt's accessible interfaces within this window: the current tab is SELECTED, only the keyboard focus is
/// FOCUSED (Qt reports every current tab and row as focused), a combo box is named by its purpose, and a changed text
/// of a list is announced. Other windows of the process keep Qt's interfaces. Precondition: no item view of the window
/// shows a tree.
void speakTruly(QWidget *window);

/// Base of the project's own widgets with such an interface from construction on; carries out a screen reader's
/// presses.
class SpokenParts
{
public:
    SpokenParts();
    virtual ~SpokenParts();
    SpokenParts(const SpokenParts &) = delete;
    SpokenParts &operator=(const SpokenParts &) = delete;

    /// Acts as on a click on the tab, row or entry with this index (from 0), which a screen reader has pressed.
    virtual void pressPart(int index) = 0;
};

/// Sets the text of a label and announces it to a screen reader at once, wherever the focus is.
void reportOutcome(QLabel *label, const QString &text);

} // namespace harrowby
