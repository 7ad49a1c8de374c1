// SPDX-License-Identifier: MIT
#include "ui/handler_fence.h"

#include "basic/logging.h"
#include "platform/breather.h"
#include "ui/counter/host_link.h"

#include <QWidget>

#include <exception>

namespace harrowby {

void HandlerFence::enter()
{
    // The event that brought us here has just been handled.
    if (m_running++ == 0)
        m_breather.rest();
}

void HandlerFence::leave()
{
    if (--m_running == 0)
        HostLink::instance().release();
    releaseIfClosed();
}

void HandlerFence::close()
{
    m_closed = true;
    releaseIfClosed();
}

void HandlerFence::releaseIfClosed()
{
    if (m_closed && m_running == 0)
        m_window.deleteLater();
}

void HandlerFence::logEarlyEnd()
{
    try {
        throw;
    } catch (const std::exception &error) {
        qCWarning(lcWindow, "A handler ended early: %s", error.what());
    } catch (...) {
        qCWarning(lcWindow, "A handler ended early");
    }
}

} // namespace harrowby
