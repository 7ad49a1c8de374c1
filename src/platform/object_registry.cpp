// SPDX-License-Identifier: MIT
#include "platform/object_registry.h"

#include "basic/logging.h"
#include "platform/object_plugins.h"

#include <exception>
#include <utility>

namespace harrowby {

void ObjectRegistry::add(const QString &classId, Factory factory)
{
    m_factories.insert_or_assign(classId.toCaseFolded(), std::move(factory));
}

void ObjectRegistry::setPluginFolders(const QStringList &folders)
{
    m_folders = folders;
    m_standardFolders = false;
}

const std::shared_ptr<ObjectRegistry> &ObjectRegistry::native()
{
    static const std::shared_ptr<ObjectRegistry> shared = [] {
        auto registry = std::make_shared<ObjectRegistry>();
        registry->m_standardFolders = true;
        return registry;
    }();
    return shared;
}

QStringList ObjectRegistry::folders() const
{
    // Found at use: a host may register its classes before it has an application object.
    return m_standardFolders ? standardPluginFolders() : m_folders;
}

std::unique_ptr<QObject> ObjectRegistry::make(const QString &classId) const
{
    const auto found = m_factories.find(classId.toCaseFolded());
    if (found == m_factories.end())
        return createFromPlugins(folders(), classId);
    return found->second ? found->second() : nullptr;
}

std::unique_ptr<QObject> ObjectRegistry::create(const QString &classId) const noexcept
try {
    return make(classId);
} catch (const std::exception &error) {
    qCWarning(lcWindow).noquote() << "Cannot create" << classId << "-" << error.what();
    return nullptr;
} catch (...) {
    qCWarning(lcWindow).noquote() << "Cannot create" << classId;
    return nullptr;
}

} // namespace harrowby
