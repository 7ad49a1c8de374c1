// SPDX-License-Identifier: MIT
#include <harrowby/saved_settings.h>

#include "basic/logging.h"
#include "platform/saved_settings.h"

#include <exception>

namespace harrowby {

namespace {

/// Saving says nothing of a failure; the file does.
bool isSaved(SavedSettings &settings, const QString &section, const QString &key, const QString &value)
{
    const QString other = value + u'?';
    return settings.get(section, key, other) == value;
}

} // namespace

QString savedSetting(const QString &section, const QString &key, const QString &defaultValue) noexcept
try {
    return IniSettings().get(section, key, defaultValue);
} catch (const std::exception &error) {
    qCWarning(lcSettings, "A saved setting could not be read: %s", error.what());
    return defaultValue;
} catch (...) {
    qCWarning(lcSettings, "A saved setting could not be read");
    return defaultValue;
}

bool saveSetting(const QString &section, const QString &key, const QString &value) noexcept
try {
    IniSettings settings;
    settings.save(section, key, value);
    return isSaved(settings, section, key, value);
} catch (const std::exception &error) {
    qCWarning(lcSettings, "A saved setting could not be written: %s", error.what());
    return false;
} catch (...) {
    qCWarning(lcSettings, "A saved setting could not be written");
    return false;
}

} // namespace harrowby
