// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

namespace harrowby::app {

/// Draws an edge around a window without a frame. A child widget over the window's own margin, transparent for the
/// mouse.
class WindowEdge final : public QWidget
{
    Q_OBJECT

public:
    /// Belongs to the window, and follows its size.
    explicit WindowEdge(QWidget &window);

    bool eventFilter(QObject *watched, QEvent *event) override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void follow();
};

} // namespace harrowby::app
