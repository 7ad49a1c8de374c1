// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QWidget>

#include <initializer_list>
#include <set>

namespace harrowby::bench {

/// Waits until each of some widgets has been painted.
class PaintWatch final : public QObject
{
public:
    explicit PaintWatch(std::initializer_list<QWidget *> widgets);

    /// Handles events until all of them have been painted since the watch was made, and nothing is left to do;
    /// false when that takes more than a few seconds.
    bool wait();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    std::set<QObject *> m_unpainted;
};

} // namespace harrowby::bench
