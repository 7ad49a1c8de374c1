// SPDX-License-Identifier: MIT
#include "postgres/action_loop.h"

#include <QAbstractEventDispatcher>
#include <QThread>

namespace harrowby::postgres {

ActionLoop::ActionLoop(ActionTime &time)
{
    auto *dispatcher = QAbstractEventDispatcher::instance();
    if (!dispatcher)
        return;
    QObject::connect(dispatcher, &QAbstractEventDispatcher::aboutToBlock, &m_context, [&time] {
        constexpr int outermost = 1;
        if (QThread::currentThread()->loopLevel() <= outermost)
            time.begin();
    });
}

} // namespace harrowby::postgres
