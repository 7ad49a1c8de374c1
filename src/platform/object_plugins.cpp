// SPDX-License-Identifier: MIT
#include "platform/object_plugins.h"

#include "basic/logging.h"

#include <harrowby/objects.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>
#include <QLibrary>
#include <QPluginLoader>

#include <algorithm>
#include <exception>

#include <dlfcn.h>

using namespace Qt::StringLiterals;

namespace harrowby {

namespace {

/// Its address lies in the library that this code is in.
void placeMark() {}

QString libraryFolder()
{
    Dl_info info{};
    if (dladdr(reinterpret_cast<const void *>(&placeMark), &info) == 0 || info.dli_fname == nullptr)
        return {};
    return QFileInfo(QFile::decodeName(info.dli_fname)).canonicalPath();
}

/// Reads the file's metadata without loading it.
bool names(const QPluginLoader &plugin, const QString &classId)
{
    const QJsonObject about = plugin.metaData();
    if (about.isEmpty())
        qCWarning(lcWindow).noquote() << plugin.fileName() << "is no plugin -" << plugin.errorString();
    if (about.value("IID"_L1).toString() != QLatin1StringView(qobject_interface_iid<ObjectFactory *>()))
        return false;
    const QJsonArray classes = about.value("MetaData"_L1).toObject().value("ClassIds"_L1).toArray();
    return std::any_of(classes.begin(), classes.end(), [&](const QJsonValue &value) {
        return value.toString().toCaseFolded() == classId.toCaseFolded();
    });
}

void noteFailure(const QPluginLoader &plugin, const QString &classId, const QString &reason)
{
    qCWarning(lcWindow).noquote() << "The plugin" << plugin.fileName() << "does not make" << classId << "-" << reason;
}

std::unique_ptr<QObject> make(QPluginLoader &plugin, const QString &classId)
{
    auto *factory = qobject_cast<ObjectFactory *>(plugin.instance());
    if (factory == nullptr) {
        noteFailure(plugin, classId,
                    plugin.isLoaded() ? u"its root object is no ObjectFactory"_s : plugin.errorString());
        return nullptr;
    }
    try {
        if (std::unique_ptr<QObject> made(factory->create(classId)); made)
            return made;
        noteFailure(plugin, classId, u"it gives nothing"_s);
    } catch (const std::exception &error) {
        noteFailure(plugin, classId, QString::fromLocal8Bit(error.what()));
    } catch (...) {
        noteFailure(plugin, classId, u"it throws"_s);
    }
    return nullptr;
}

} // namespace

QStringList standardPluginFolders()
{
    QStringList folders;
    if (const QString library = libraryFolder(); !library.isEmpty())
        folders << library + "/harrowby/plugins"_L1;
    if (QCoreApplication::instance() != nullptr)
        folders << QCoreApplication::applicationDirPath() + "/plugins"_L1;
    return folders;
}

std::unique_ptr<QObject> createFromPlugins(const QStringList &folders, const QString &classId)
{
    for (const QString &folder : folders) {
        const QFileInfoList files = QDir(folder).entryInfoList(QDir::Files, QDir::Name);
        for (const QFileInfo &file : files) {
            QPluginLoader plugin;
            if (QLibrary::isLibrary(file.fileName()))
                plugin.setFileName(file.absoluteFilePath());
            if (!plugin.fileName().isEmpty() && names(plugin, classId)) {
                if (auto made = make(plugin, classId))
                    return made;
            }
        }
    }
    return nullptr;
}

} // namespace harrowby
