// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

#include <functional>

class QAbstractItemModel;

namespace harrowby::test {

/// Puts the clock forward at one row of a filling list, so that the window breathes there, and acts in that breath.
class Interruption : public QObject
{
    Q_OBJECT

public:
    /// `action` is done once, when the `row`-th row (1-based) from now on has been filled.
    Interruption(int row, std::function<void()> action);

    /// Rows of a list, as they are appended to its model.
    void watchRows(const QAbstractItemModel &list);
    /// A quick-sale button, as it is filled.
    void watchButton(QObject &button);

    [[nodiscard]] bool isDone() const { return m_isDone; }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void rowFilled();

    int m_row;
    std::function<void()> m_action;
    bool m_isDone = false;
};

/// Puts the process's clock forward by the time after which the window breathes again.
void passRest();

} // namespace harrowby::test
