// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

#include <functional>

namespace harrowby::app {

/// Has a new action of the user begin (ServerStore::beginAction()) with each key and each press: a dialog of the office
/// stays open over many, and the event loop that is outermost does not run meanwhile.
class InputActions final : public QObject
{
    Q_OBJECT

public:
    explicit InputActions(std::function<void()> beginAction, QObject *parent = nullptr);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    std::function<void()> m_beginAction;
};

} // namespace harrowby::app
