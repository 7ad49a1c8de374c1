// SPDX-License-Identifier: MIT
#pragma once

#include <QTabBar>

namespace harrowby::app {

/// Tab bar with touch-sized tabs in the platform's style. The wheel changes no tab.
class TouchTabBar final : public QTabBar
{
    Q_OBJECT

public:
    using QTabBar::QTabBar;

protected:
    [[nodiscard]] QSize tabSizeHint(int index) const override;
    void wheelEvent(QWheelEvent *event) override;
};

} // namespace harrowby::app
