// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

#include <functional>
#include <map>
#include <memory>

namespace harrowby {

/// Creates objects by class identifier: windows and components that a host or a plugin may supply and this one lacks.
/// Identifiers are compared without regard to case.
class ObjectRegistry
{
public:
    using Factory = std::function<std::unique_ptr<QObject>()>;

    /// The one of this process, which looks for plugins where an installation and a build tree have them.
    [[nodiscard]] static const std::shared_ptr<ObjectRegistry> &native();

    /// The last factory of an identifier counts; an empty one says that there is none.
    void add(const QString &classId, Factory factory);

    /// Where plugins are looked for, in this order. A new registry looks nowhere.
    void setPluginFolders(const QStringList &folders);

    /// Null when no factory and no plugin makes such an object, or making it fails, which is logged. Never throws.
    /// Of the plugins only the one that names the identifier is loaded.
    [[nodiscard]] std::unique_ptr<QObject> create(const QString &classId) const noexcept;

private:
    [[nodiscard]] QStringList folders() const;
    [[nodiscard]] std::unique_ptr<QObject> make(const QString &classId) const;

    std::map<QString, Factory> m_factories; ///< by case-folded identifier
    QStringList m_folders;
    bool m_standardFolders = false;
};

} // namespace harrowby
