// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

namespace harrowby::app {

/// A line around a window that has no frame, so that it does not run into what lies behind it. Lies on the window's
/// own margin and lets presses through.
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
