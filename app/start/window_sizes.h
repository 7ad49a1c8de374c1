// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

class QWidget;

namespace harrowby::app {

/// Asks for a window's size again where the window system tells one below the window's least. On a busy machine Qt 6.4
/// with openbox now and then ends with 1 by 1 for a box that stands on the screen in its whole size; no press on it
/// would count, and the keyboard on the screen would cover it. Lives as long as the application.
class WindowSizes final : public QObject
{
    Q_OBJECT

public:
    explicit WindowSizes(QObject *parent = nullptr);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void ask(QWidget &window, const QSize &before);
};

} // namespace harrowby::app
