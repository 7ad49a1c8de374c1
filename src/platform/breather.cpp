// SPDX-License-Identifier: MIT
#include "platform/breather.h"

#include <QCoreApplication>
#include <QElapsedTimer>

namespace harrowby {
namespace {
constexpr qint64 restMs = 8;
} // namespace

Breather::Breather() : m_sinceLast(std::make_shared<QElapsedTimer>())
{
    m_sinceLast->start();
}

void Breather::breathe()
{
    if (m_sinceLast->elapsed() < restMs)
        return;
    const auto timer = m_sinceLast;
    timer->restart(); // a handler that is entered now rests as long as everybody else
    QCoreApplication::processEvents();
    timer->restart(); // a slow repaint must not be followed by the next one at once
}

} // namespace harrowby
