// SPDX-License-Identifier: MIT
#include "ui/counter/host_link.h"

#include "basic/logging.h"
#include "ui/counter/code_taker.h"
#include "ui/inventory.h"
#include "ui/widgets/row_list.h"
#include "ui/widgets/text_table_model.h"

#include <QCoreApplication>

#include <exception>
#include <utility>

namespace harrowby {

HostLink &HostLink::instance()
{
    static HostLink link;
    return link;
}

void HostLink::open(Inventory &window)
{
    m_window = &window;
    followCart(&window.controls().LV3->rows());
    note(event::WindowOpened());
    release();
}

void HostLink::close(const Inventory &window)
{
    if (m_window != &window)
        return;
    m_window = nullptr;
    followCart(nullptr);
    note(event::WindowClosed());
}

void HostLink::followCart(const QAbstractItemModel *cart)
{
    if (m_cart)
        m_cart->disconnect(this);
    m_cart = cart;
    if (!cart)
        return;
    connect(cart, &QAbstractItemModel::rowsInserted, this, &HostLink::noteCartChange);
    connect(cart, &QAbstractItemModel::rowsRemoved, this, &HostLink::noteCartChange);
    connect(cart, &QAbstractItemModel::dataChanged, this, &HostLink::noteCartChange);
    connect(cart, &QAbstractItemModel::modelReset, this, &HostLink::noteCartChange);
}

/// Told once for a handler, where its first change belongs among the other events.
void HostLink::noteCartChange()
{
    if (!std::exchange(m_cartNoted, true))
        note(event::CartChanged());
}

void HostLink::note(CounterEvent event)
{
    if (isFollowed())
        m_noted.push_back(std::move(event));
}

void HostLink::release() noexcept
try {
    m_cartNoted = false;
    for (CounterEvent &event : std::exchange(m_noted, {}))
        tell(std::move(event));
} catch (const std::exception &error) {
    qCWarning(lcWindow, "The host is not told of all that happened: %s", error.what());
}

/// One posted call an event: while a slot runs an event loop of its own, the next ones arrive in it.
void HostLink::tell(CounterEvent event)
{
    if (!isFollowed())
        return;
    m_told.push_back(std::move(event));
    QMetaObject::invokeMethod(this, &HostLink::tellNext, Qt::QueuedConnection);
}

void HostLink::tellNext()
{
    const CounterEvent event = std::move(m_told.front());
    m_told.pop_front();
    try {
        m_follower(event);
    } catch (const std::exception &error) {
        qCWarning(lcWindow, "The host could not take what it was told: %s", error.what());
    } catch (...) {
        qCWarning(lcWindow, "The host could not take what it was told");
    }
}

void HostLink::takeCodes(const std::optional<CodeReaderSettings> &settings)
{
    if (settings && !m_codes)
        m_codes = new CodeTaker(*this, *QCoreApplication::instance());
    if (m_codes)
        m_codes->setSettings(settings);
}

} // namespace harrowby
