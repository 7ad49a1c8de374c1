// SPDX-License-Identifier: MIT
#pragma once

#include <harrowby/export.h>

#include <QLatin1StringView>
#include <QObject>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

/// Objects that the component creates by class identifier and does not contain: the list of items to reorder
/// (ReorderListClassId) and the sales report (ReportClassId in harrowby/report_component.h). Without them the till
/// works: a press on the reorder figure does nothing, and "Sales Report" tells the user that the report cannot be
/// loaded.
///
/// A host supplies them in one of three ways: with registerClass(), with a plugin in an installation's plugin folder,
/// or with a plugin in a folder of its own, named by setPluginFolders(). docs/host-windows.md says which one when.
///
/// Class identifiers are compared without regard to case. The functions are called on the user-interface thread; they
/// need no QApplication and may be called before there is one, and before or after Init::LoadInventory().
namespace harrowby {

/// The window that lists the items to reorder: a QObject with the late-bound method (a slot or Q_INVOKABLE)
///
///     void Show(int modal, QWidget *owner);
///
/// which the component calls with 1 and its own window, on the user-interface thread. Show() returns when the window
/// has been closed; the component then destroys the object. An object without the method is destroyed unseen and
/// logged. The component's window may be destroyed while Show() runs, and `owner` with it.
inline constexpr QLatin1StringView ReorderListClassId("Harrowby.ReorderList");

/// Makes one new object without a parent; the component owns and destroys it. Null and exceptions mean that there is
/// none; an exception is logged.
using ObjectMaker = std::function<std::unique_ptr<QObject>()>;

/// Registers the maker of a class, replacing an earlier one. A registered maker is asked instead of any plugin; an
/// empty one makes the class unavailable, from plugins too. It is called at each use, so it may outlive what it
/// captures: hold the connection weakly. Never throws.
HARROWBY_EXPORT void registerClass(const QString &classId, ObjectMaker maker) noexcept;

/// Sets the folders (absolute paths) that are searched for plugins, in this order, at each use; an empty list switches
/// plugins off. Until it is called these are "harrowby/plugins" beside the component's library and "plugins" beside the
/// program. Folders that do not exist are skipped. Never throws.
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
///         Q_PLUGIN_METADATA(IID HARROWBY_OBJECT_FACTORY_IID FILE "report_plugin.json")
///         Q_INTERFACES(harrowby::ObjectFactory)
///     ...
///
/// The root object is Qt's (QPluginLoader::instance()) and stays loaded until the process ends.
class ObjectFactory
{
public:
    virtual ~ObjectFactory() = default;
    /// One new object without a parent, which the caller owns; null when there is none. An exception counts as null and
    /// is logged.
    [[nodiscard]] virtual QObject *create(const QString &classId) = 0;
};

} // namespace harrowby

/// The interface identifier in a plugin's metadata; its number changes when ObjectFactory does.
#define HARROWBY_OBJECT_FACTORY_IID "harrowby.ObjectFactory/1"

Q_DECLARE_INTERFACE(harrowby::ObjectFactory, HARROWBY_OBJECT_FACTORY_IID)
