// SPDX-License-Identifier: MIT
#include "ui/interruption.h"

#include <QAbstractItemModel>
#include <QElapsedTimer>
#include <QEvent>
#include <QTimer>

#include <utility>

namespace harrowby::test {

Interruption::Interruption(int row, std::function<void()> action) : m_row(row), m_action(std::move(action)) {}

void Interruption::watchRows(const QAbstractItemModel &list)
{
    connect(&list, &QAbstractItemModel::rowsInserted, this, &Interruption::rowFilled);
}

void Interruption::watchButton(QObject &button)
{
    button.installEventFilter(this);
}

bool Interruption::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::ToolTipChange)
        rowFilled();
    return QObject::eventFilter(watched, event);
}

void Interruption::rowFilled()
{
    if (m_row <= 0)
        return;
    if (--m_row > 0)
        return;
    passRest();
    QTimer::singleShot(0, this, [this] {
        m_isDone = true;
        m_action();
    });
}

void passRest()
{
    constexpr qint64 longerThanTheRestMs = 45;
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < longerThanTheRestMs) {
    }
}

} // namespace harrowby::test
