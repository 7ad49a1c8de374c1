// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <functional>

namespace harrowby::app {

/// The saved settings as the office uses them; the program hands in those of the component.
struct OfficeSettings
{
    std::function<QString(const QString &section, const QString &key, const QString &defaultValue)> get;
    std::function<bool(const QString &section, const QString &key, const QString &value)> save; ///< false: not saved
};

} // namespace harrowby::app
