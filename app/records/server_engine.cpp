// SPDX-License-Identifier: MIT
#include "app/records/server_engine.h"

#include "basic/logging.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QJsonObject>
#include <QPluginLoader>

#include <mutex>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

/// Beside the program in a build's folder, and where an installation has its plugins.
QStringList pluginFiles()
{
    const QDir program(QCoreApplication::applicationDirPath());
    const auto name = u"harrowby-server.so"_s;
    return {program.filePath(u"plugins/"_s + name),
            QDir::cleanPath(program.filePath(QStringLiteral(HARROWBY_PLUGINS_FROM_PROGRAM) + u'/' + name))};
}

QString missing()
{
    return u"A store on a server needs the package %1, which is not installed on this machine."_s.arg(
        QLatin1StringView(serverPackage));
}

/// What goes over the interface is compiled code: both sides are of one version.
Result<ServerEngine *, QString> load(const QString &file)
{
    QPluginLoader plugin(file);
    const QJsonObject about = plugin.metaData();
    const QString version = about.value("MetaData"_L1).toObject().value("Version"_L1).toString();
    if (about.value("IID"_L1).toString() != QLatin1StringView(qobject_interface_iid<ServerEngine *>()) ||
        version != QStringLiteral(HARROWBY_VERSION))
        return Unexpected(u"The package %1 is of another version than this program (%2). Please update both."_s.arg(
            QLatin1StringView(serverPackage), QStringLiteral(HARROWBY_VERSION)));
    auto *engine = qobject_cast<ServerEngine *>(plugin.instance());
    if (engine != nullptr)
        return engine;
    qCWarning(lcStore).noquote() << "The plugin" << file << "cannot be loaded -" << plugin.errorString();
    return Unexpected(u"What the package %1 has installed cannot be loaded (%2)."_s.arg(
        QLatin1StringView(serverPackage), plugin.errorString()));
}

} // namespace

Result<ServerEngine *, QString> serverEngine()
{
    static std::mutex mutex;
    static ServerEngine *engine = nullptr;
    const std::lock_guard lock(mutex);
    if (engine != nullptr)
        return engine;
    for (const QString &file : pluginFiles()) {
        if (!QFile::exists(file))
            continue;
        const auto loaded = load(file);
        engine = loaded ? *loaded : nullptr;
        return loaded;
    }
    return Unexpected(missing());
}

} // namespace harrowby::app
