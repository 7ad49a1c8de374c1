// SPDX-License-Identifier: MIT
#pragma once

class QLabel;
class QString;
class QWidget;

namespace harrowby {

/// From now on a screen reader hears of this window, and of all that stands in it, what is so: the tab that is chosen
/// is selected, only what has the keyboard focus is focused, a field to pick in is called by its purpose, and a text
/// that changes in a list is told. Qt itself calls every chosen tab and every current row focused. Other windows of
/// the process are left alone. No list of such a window may have branches.
void speakTruly(QWidget *window);

/// The same from the beginning for a widget of this project's own, and how its parts are pressed by a screen reader.
class SpokenParts
{
public:
    SpokenParts();
    virtual ~SpokenParts();
    SpokenParts(const SpokenParts &) = delete;
    SpokenParts &operator=(const SpokenParts &) = delete;

    /// A screen reader presses a tab, a row or an entry, counted from 0: as if it had been clicked.
    virtual void pressPart(int index) = 0;
};

/// Shows in a label what came of something, and has a screen reader say it at once, wherever the focus is.
void reportOutcome(QLabel *label, const QString &text);

} // namespace harrowby
