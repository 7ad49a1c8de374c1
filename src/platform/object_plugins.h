// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

#include <memory>

/// Plugins that make objects by class identifier; see harrowby/objects.h.
namespace harrowby {

/// "harrowby/plugins" beside the library that this code is in, and "plugins" beside the program.
[[nodiscard]] QStringList standardPluginFolders();

/// The object of the first plugin, by folder and file name, that names the identifier and makes one. Only plugins that
/// name it are loaded; what fails is logged and passed over. Null when none does.
[[nodiscard]] std::unique_ptr<QObject> createFromPlugins(const QStringList &folders, const QString &classId);

} // namespace harrowby
