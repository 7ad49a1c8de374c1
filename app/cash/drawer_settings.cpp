// SPDX-License-Identifier: MIT
#include "app/cash/drawer_settings.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

const auto section = u"Drawer"_s;
const auto onKey = u"On"_s;
const auto queueKey = u"Queue"_s;
const auto pinKey = u"Pin"_s;
const auto pulseKey = u"Pulse"_s;
const auto pauseKey = u"Pause"_s;

constexpr int stepMs = 2; ///< in which the printer counts

int readTime(const OfficeSettings &settings, const QString &key, int usual)
{
    bool isNumber = false;
    const int ms = settings.get(section, key, {}).toInt(&isNumber);
    return isNumber ? std::clamp(ms, DrawerSettings::shortestMs, DrawerSettings::longestMs) / stepMs * stepMs : usual;
}

char steps(int ms)
{
    return static_cast<char>(ms / stepMs);
}

} // namespace

DrawerSettings readDrawerSettings(const OfficeSettings &settings)
{
    DrawerSettings read;
    read.isOn = settings.get(section, onKey, {}) == u"1"_s;
    read.queue = settings.get(section, queueKey, {}).trimmed();
    read.pin = settings.get(section, pinKey, {}) == u"5"_s ? 5 : 2;
    read.pulseMs = readTime(settings, pulseKey, DrawerSettings::usualPulseMs);
    read.pauseMs = readTime(settings, pauseKey, DrawerSettings::usualPauseMs);
    return read;
}

bool saveDrawerSettings(const OfficeSettings &settings, const DrawerSettings &before, const DrawerSettings &after)
{
    bool saved = true;
    const auto save = [&](const QString &key, const QString &was, const QString &is) {
        if (was != is)
            saved = settings.save(section, key, is) && saved;
    };
    save(queueKey, before.queue, after.queue);
    save(pinKey, QString::number(before.pin), QString::number(after.pin));
    save(pulseKey, QString::number(before.pulseMs), QString::number(after.pulseMs));
    save(pauseKey, QString::number(before.pauseMs), QString::number(after.pauseMs));
    save(onKey, QString::number(before.isOn), QString::number(after.isOn));
    return saved;
}

QByteArray drawerPulse(const DrawerSettings &settings)
{
    QByteArray pulse("\x1bp");
    pulse += settings.pin == 5 ? '\1' : '\0';
    pulse += steps(settings.pulseMs);
    pulse += steps(settings.pauseMs);
    return pulse;
}

} // namespace harrowby::app
