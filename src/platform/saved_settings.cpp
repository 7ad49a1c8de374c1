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

/// The contents; empty bytes for a file that does not exist yet.
Result<QByteArray, QString> readFrom(const QString &path)
{
    if (!QFile::exists(path))
        return QByteArray();
    QFile file(path);
    if (const auto opened = openOrdinaryFile(file, QIODevice::ReadOnly); !opened)
        return Unexpected(opened.error());
    const QByteArray bytes = file.read(largestFile + 1);
    if (file.error() != QFileDevice::NoError)
        return Unexpected(file.errorString());
    if (bytes.size() > largestFile)
        return Unexpected(u"it is larger than 1 MB"_s);
    return bytes;
}

/// The contents; nothing, and the failure reported, when they cannot be read.
std::optional<QByteArray> contentsOf(const QString &path)
{
    const auto bytes = readFrom(path);
    if (bytes) {
        FailureTelling::reportSuccess(FileFailure::Kind::SettingsRead, path);
        return *bytes;
    }
    qCWarning(lcSettings).noquote() << "Cannot read" << path << "-" << bytes.error();
    FailureTelling::report(FileFailure::Kind::SettingsRead, path, bytes.error());
    return {};
}

void reportSaving(const QString &path, const Result<void, QString> &outcome)
{
    if (outcome)
        return FailureTelling::reportSuccess(FileFailure::Kind::SettingsWrite, path);
    qCWarning(lcSettings).noquote() << "Cannot write" << path << "-" << outcome.error();
    FailureTelling::report(FileFailure::Kind::SettingsWrite, path, outcome.error());
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
        return reportSaving(m_path, Unexpected(u"it cannot be read"_s));
    IniText text(*bytes);
    text.setValue(section, key, value);
    const QByteArray changed = text.bytes();
    if (changed.size() > largestFile)
        return reportSaving(m_path, Unexpected(u"it would be larger than 1 MB"_s)); // and never be read again
    reportSaving(m_path, writePrivateFile(m_path, changed));
}

} // namespace harrowby
