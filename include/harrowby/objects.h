// SPDX-License-Identifier: MIT
#pragma once

#include <harrowby/export.h>

#include <QLatin1StringView>
#include <QObject>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

/// Objects that the component asks for by class identifier, and works without: the report
/// (ReportClassId in harrowby/report_component.h) and the list of items to reorder (ReorderListClassId).
///
/// A host supplies them itself with registerClass(), or they come from plugins. Identifiers are compared without regard
/// to case. Everything happens on the user-interface thread.
///
/// The window is a QObject with the late-bound method (a slot or Q_INVOKABLE)
///
///     void Show(int modal, QWidget *owner);
///
/// called with 1 and the component's window. It should return when the window has been closed; the object is destroyed
/// then.
namespace harrowby {

/// The window that lists the items to reorder.
inline constexpr QLatin1StringView ReorderListClassId("Harrowby.ReorderList");

/// Makes one new object, which the caller owns. Null and exceptions count as "there is none".
using ObjectMaker = std::function<std::unique_ptr<QObject>()>;

/// Supplies the class. The last maker registered for an identifier counts, and comes before any plugin; an empty one
/// takes the class away, from plugins too. Never throws.
HARROWBY_EXPORT void registerClass(const QString &classId, ObjectMaker maker) noexcept;

/// Folders in which plugins are looked for, in this order; an empty list switches plugins off. Until it is called these
/// are "harrowby/plugins" beside the component's library and "plugins" beside the program. Never throws.
HARROWBY_EXPORT void setPluginFolders(const QStringList &folders) noexcept;

/// What a plugin's root object implements. The plugin names the classes that it makes in its metadata,
///
///     {"ClassIds": ["HarrowReport.ReportDll"]}
///
/// and is loaded only when one of them is asked for:
///
///     class ReportPlugin : public QObject, public harrowby::ObjectFactory
///     {
///         Q_OBJECT
///         Q_PLUGIN_METADATA(IID "harrowby.ObjectFactory/1" FILE "report_plugin.json")
///         Q_INTERFACES(harrowby::ObjectFactory)
///     ...
class ObjectFactory
{
public:
    virtual ~ObjectFactory() = default;
    /// One new object, without a parent, which the caller owns; null when there is none.
    [[nodiscard]] virtual QObject *create(const QString &classId) = 0;
};

} // namespace harrowby

Q_DECLARE_INTERFACE(harrowby::ObjectFactory, "harrowby.ObjectFactory/1")
