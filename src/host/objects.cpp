// SPDX-License-Identifier: MIT
#include <harrowby/objects.h>

#include "basic/logging.h"
#include "platform/object_registry.h"

#include <exception>
#include <utility>

namespace harrowby {

void registerClass(const QString &classId, ObjectMaker maker) noexcept
try {
    ObjectRegistry::native()->add(classId, std::move(maker));
} catch (const std::exception &error) {
    qCWarning(lcWindow, "A class could not be registered: %s", error.what());
} catch (...) {
    qCWarning(lcWindow, "A class could not be registered");
}

void setPluginFolders(const QStringList &folders) noexcept
try {
    ObjectRegistry::native()->setPluginFolders(folders);
} catch (const std::exception &error) {
    qCWarning(lcWindow, "The plugin folders could not be set: %s", error.what());
} catch (...) {
    qCWarning(lcWindow, "The plugin folders could not be set");
}

} // namespace harrowby
