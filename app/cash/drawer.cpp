// SPDX-License-Identifier: MIT
#include "app/cash/drawer.h"

#include "app/cash/drawer_kick.h"
#include "basic/logging.h"

#include <QElapsedTimer>
#include <QTimer>

#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

Drawer::Drawer(DrawerSettings settings, Told told, const DrawerOptions &options, QObject *parent) :
    QObject(parent), m_settings(std::move(settings)), m_told(std::move(told)), m_options(options)
{
}

Drawer::~Drawer()
{
    m_told = nullptr;
    QElapsedTimer timer;
    timer.start();
    const auto kicks = m_kicks; // a copy: one that ends removes itself
    for (DrawerKick *kick : kicks)
        kick->finish(m_options.exitWait - std::chrono::milliseconds(timer.elapsed()));
}

void Drawer::open()
{
    if (!m_settings.isOn)
        return;
    if (m_settings.queue.isEmpty()) {
        QTimer::singleShot(0, this, [this] { tell(u"no printer is chosen for it"_s); });
        return;
    }
    auto *kick = new DrawerKick(m_settings.queue, m_options, this);
    m_kicks.push_back(kick);
    kick->start(drawerPulse(m_settings), [this, kick](const QString &reason) { end(kick, reason); });
}

void Drawer::end(DrawerKick *kick, const QString &reason)
{
    std::erase(m_kicks, kick);
    kick->deleteLater();
    tell(reason);
}

void Drawer::tell(const QString &reason) const
{
    if (!reason.isEmpty())
        qCWarning(lcPrint).noquote() << "The cash drawer was not opened: printer" << m_settings.queue << '-' << reason;
    if (m_told)
        m_told(reason);
}

} // namespace harrowby::app
