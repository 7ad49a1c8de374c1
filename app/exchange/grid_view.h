// SPDX-License-Identifier: MIT
#pragma once

#include <QTreeView>

namespace harrowby::app {

/// Whole rows to look through, in the order of their file, however many there are.
class GridView final : public QTreeView
{
    Q_OBJECT

public:
    GridView(const QString &objectName, const QString &spoken, QWidget *parent);

    /// Makes the columns as wide as their headings and first rows need, none wider than `most` letters. With
    /// `lastTakesRest` the last has what the others leave, and nothing scrolls sideways.
    void fitColumns(int most, bool lastTakesRest);
    /// Gives a column room for so many letters, where its first rows need less than those that come later.
    void widen(int column, int letters);
};

/// Any text so that one line can show it: line breaks become "⏎", what is unseen a dot, and what is long is cut.
[[nodiscard]] QString lineOf(const QString &text);

} // namespace harrowby::app
