// SPDX-License-Identifier: MIT
#pragma once

#include <QSize>
#include <QString>

#include <vector>

class QMainWindow;
class QWidget;

namespace harrowby::bench {

/// As many plain Qt controls as a given window has, of the same kinds and with the same texts, in layouts on as
/// many panels. What it takes to show it is what any window of that size takes.
class PlainWindow
{
public:
    explicit PlainWindow(const QMainWindow &model);

    /// Builds and shows the window. Returns how long it took until it was painted; below 0 when it never was.
    [[nodiscard]] double show() const;

private:
    enum class Kind { Frame, Label, Button, CheckBox, LineEdit, ComboBox, List, Text, Tabs };
    struct Control
    {
        Kind kind;
        int panel; ///< index of the panel that it stands on; -1 for the window itself
        QString text;
    };

    static bool kindOf(const QWidget &widget, Kind &kind, QString &text);
    static QWidget *create(const Control &control, QWidget *parent);

    QSize m_size;
    std::vector<Control> m_controls;
};

} // namespace harrowby::bench
