// SPDX-License-Identifier: MIT
#pragma once

#include "spoken/spoken.h"

#include <QTabBar>

#include <functional>

namespace harrowby {

/// Row of tabs numbered from 1. Captions are plain text. Besides the arrow keys, a tab's number, Home and End choose a
/// tab, as the arrow keys may stop at one that is refused. The wheel chooses none.
class TabStrip : public QTabBar, public SpokenParts
{
    Q_OBJECT

public:
    explicit TabStrip(QWidget *parent = nullptr);

    /// Asked before a tab that the user chose (mouse, keyboard or assistive technology) is selected; false
    /// cancels the choice. Not asked when selectTab() selects a tab.
    std::function<bool()> beforeClick;

    [[nodiscard]] int selectedTab() const { return currentIndex() + 1; }
    /// Selects a tab from code; tabClicked() follows also when it was selected already.
    void selectTab(int number);
    void pressPart(int index) override { choose(index); }

Q_SIGNALS:
    /// A tab was chosen, by the user or by selectTab(); the same tab again counts too.
    void tabClicked(int number);

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void tabInserted(int index) override;
    void wheelEvent(QWheelEvent *event) override;

private:
    [[nodiscard]] int tabOfKey(int key) const;
    [[nodiscard]] int neighbour(bool next) const;
    void choose(int index);
    void showTab(int index);
    void currentTabChanged(int index);

    int m_accepted = -1; ///< the tab that is selected as far as the program knows
};

} // namespace harrowby
