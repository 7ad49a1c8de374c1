// SPDX-License-Identifier: MIT
#pragma once

#include <QTabBar>

namespace harrowby::app {

/// Tabs that a thumb hits, drawn as the platform draws tabs. The wheel turns none.
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
