// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QString>

#include <functional>
#include <map>
#include <memory>

namespace harrowby {

/// Creates objects by class identifier: windows and components that a host may supply and this one lacks.
class ObjectRegistry
{
public:
    using Factory = std::function<std::unique_ptr<QObject>()>;

    void add(const QString &classId, Factory factory);
    /// Null when nobody has registered the identifier.
    [[nodiscard]] std::unique_ptr<QObject> create(const QString &classId) const;

private:
    std::map<QString, Factory> m_factories;
};

} // namespace harrowby
