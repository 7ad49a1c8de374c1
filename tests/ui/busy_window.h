// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/readable_texts.h"
#include "ui/controls.h"
#include "ui/work_areas.h"

#include <QMainWindow>
#include <QPalette>

#include <vector>

namespace harrowby::test {

/// Number of the work areas of a busy window.
constexpr int workAreas = 12;

/// The window's controls with texts of a busy day, and nobody who acts on them.
class BusyWindow : public QMainWindow
{
public:
    BusyWindow();

    /// A WorkArea; 6 is the search result and 7 the keypad over the custom sale, 8 the login panel, 9 to 12 the
    /// search result over the other work areas.
    void showWorkArea(int number);

    const Controls controls;

private:
    [[nodiscard]] std::vector<QFrame *> allPanels() const;
    /// In stacking order.
    [[nodiscard]] std::vector<QFrame *> panelsOf(int number) const;
};

} // namespace harrowby::test
