// SPDX-License-Identifier: MIT
#pragma once

#include <QCoreApplication>
#include <QEvent>
#include <QWidget>

#include <utility>

namespace harrowby::test {

/// How often a widget was painted.
class PaintCount final : public QObject
{
public:
    explicit PaintCount(QWidget *widget) { widget->installEventFilter(this); }
    /// Since it was last asked, when all that there is to do has been done.
    int take()
    {
        for (int turn = 0; turn < 3; ++turn) // a list is laid out in the turn after a change
            QCoreApplication::processEvents();
        return std::exchange(m_count, 0);
    }

protected:
    bool eventFilter(QObject * /*watched*/, QEvent *event) override
    {
        m_count += event->type() == QEvent::Paint ? 1 : 0;
        return false;
    }

private:
    int m_count = 0;
};

} // namespace harrowby::test
