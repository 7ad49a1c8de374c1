// SPDX-License-Identifier: MIT
#include "platform/saved_settings.h"

#include "basic/logging.h"
#include "basic/private_files.h"
#include "platform/failure_telling.h"
#include "platform/ini_text.h"

#include <QFile>
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

constexpr qint64 largestFile = 1'000'000; // bytes

/// Why the file could not be read; empty when `bytes` are its contents.
QString readFrom(const QString &path, QByteArray &bytes)
{
    QFile file(path);
    if (const QString reason = openOrdinaryFile(file, QIODevice::ReadOnly); !reason.isEmpty())
        return reason;
    bytes = file.read(largestFile + 1);
    if (file.error() != QFileDevice::NoError)
        return file.errorString();
    return bytes.size() > largestFile ? u"it is larger than 1 MB"_s : QString();
}

/// The contents; empty bytes for a file that does not exist yet, nothing for one that cannot be read.
std::optional<QByteArray> contentsOf(const QString &path)
{
    QByteArray bytes;
    const QString reason = QFile::exists(path) ? readFrom(path, bytes) : QString();
    if (reason.isEmpty()) {
        FailureTelling::reportSuccess(FileFailure::Kind::SettingsRead, path);
        return bytes;
    }
    qCWarning(lcSettings).noquote() << "Cannot read" << path << "-" << reason;
    FailureTelling::report(FileFailure::Kind::SettingsRead, path, reason);
    return {};
}

/// What was not written is told with its reason.
void finishSaving(const QString &path, const QString &reason)
{
    if (reason.isEmpty())
        return FailureTelling::reportSuccess(FileFailure::Kind::SettingsWrite, path);
    qCWarning(lcSettings).noquote() << "Cannot write" << path << "-" << reason;
    FailureTelling::report(FileFailure::Kind::SettingsWrite, path, reason);
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
    // A file that cannot be read is not replaced, as its other settings would be lost.
    const auto bytes = contentsOf(m_path);
    if (!bytes)
        return finishSaving(m_path, u"it cannot be read"_s);
    IniText text(*bytes);
    text.setValue(section, key, value);
    finishSaving(m_path, writePrivateFile(m_path, text.bytes()));
}

} // namespace harrowby
