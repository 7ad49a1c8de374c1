// SPDX-License-Identifier: MIT
#include "platform/saved_settings.h"

#include "basic/logging.h"
#include "platform/ini_text.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>

#include <optional>
#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby {
namespace {

QString userFile()
{
    return QStandardPaths::writableLocation(QStandardPaths::ConfigLocation) + u"/Harrowby/Harrowby.ini"_s;
}

/// The contents; empty bytes for a file that does not exist yet, nothing for one that cannot be read.
std::optional<QByteArray> contentsOf(const QString &path)
{
    QFile file(path);
    if (!file.exists())
        return QByteArray();
    if (file.open(QIODevice::ReadOnly)) {
        const QByteArray bytes = file.readAll();
        if (file.error() == QFileDevice::NoError)
            return bytes;
    }
    qCWarning(lcSettings).noquote() << "Cannot read" << path << "-" << file.errorString();
    return {};
}

void writeTo(const QString &path, const QByteArray &bytes)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit())
        qCWarning(lcSettings).noquote() << "Cannot write" << path << "-" << file.errorString();
}

} // namespace

SavedSettings::~SavedSettings() = default;

IniSettings::IniSettings(QString path) : m_path(path.isEmpty() ? userFile() : std::move(path)) {}

QString IniSettings::get(const QString &section, const QString &key, const QString &defaultValue)
{
    const auto bytes = contentsOf(m_path);
    return bytes ? IniText(*bytes).value(section, key).value_or(defaultValue) : defaultValue;
}

void IniSettings::save(const QString &section, const QString &key, const QString &value)
{
    if (!IniText::canName(section, key)) {
        qCWarning(lcSettings).noquote() << "No name for a saved setting:" << section << key;
        return;
    }
    // A file that is there but cannot be read is not replaced: it would lose the rest of it.
    const auto bytes = contentsOf(m_path);
    if (!bytes)
        return;
    IniText text(*bytes);
    text.setValue(section, key, value);
    writeTo(m_path, text.bytes());
}

} // namespace harrowby
