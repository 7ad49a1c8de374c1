// SPDX-License-Identifier: MIT
#include "platform/object_registry.h"

#include <utility>

namespace harrowby {

void ObjectRegistry::add(const QString &classId, Factory factory)
{
    m_factories.insert_or_assign(classId, std::move(factory));
}

std::unique_ptr<QObject> ObjectRegistry::create(const QString &classId) const
{
    const auto found = m_factories.find(classId);
    return found == m_factories.end() || !found->second ? nullptr : found->second();
}

} // namespace harrowby
