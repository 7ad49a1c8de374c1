// SPDX-License-Identifier: MIT
#include "app/readers/reader_settings.h"

#include "app/readers/device_reader.h"
#include "input/code_burst.h"

#include <QDir>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

const auto section = u"Readers"_s;
const auto typingKey = u"Typing"_s;
const auto gapKey = u"Gap"_s;
const auto prefixKey = u"Prefix"_s;

QString deviceKey(int number)
{
    return u"Device%1"_s.arg(number + 1);
}

QStringList entries(const QString &folder, const QStringList &patterns)
{
    QStringList paths;
    for (const QString &name : QDir(folder).entryList(patterns, QDir::System | QDir::Files, QDir::Name))
        paths << folder + u'/' + name;
    return paths;
}

} // namespace

ReaderSettings readReaderSettings(const OfficeSettings &settings)
{
    ReaderSettings read;
    read.typing = settings.get(section, typingKey, u"1"_s) != u"0"_s;
    bool isNumber = false;
    const int gap = settings.get(section, gapKey, {}).toInt(&isNumber);
    if (isNumber)
        read.gapMs = CodeBurst::countedGapMs(gap);
    read.prefix = settings.get(section, prefixKey, {});
    for (int number = 0; number < ReaderSettings::mostDevices; ++number) {
        if (const auto device = deviceOfLine(settings.get(section, deviceKey(number), {})))
            read.devices << *device;
    }
    return read;
}

bool saveReaderSettings(const OfficeSettings &settings, const ReaderSettings &before, const ReaderSettings &after)
{
    bool saved = true;
    const auto save = [&](const QString &key, const QString &was, const QString &is) {
        if (was != is)
            saved = settings.save(section, key, is) && saved;
    };
    save(typingKey, QString::number(before.typing), QString::number(after.typing));
    save(gapKey, QString::number(before.gapMs), QString::number(after.gapMs));
    save(prefixKey, before.prefix, after.prefix);
    const auto line = [](const QList<ReaderDevice> &devices, int number) {
        return number < devices.size() ? deviceLine(devices[number]) : QString();
    };
    for (int number = 0; number < ReaderSettings::mostDevices; ++number)
        save(deviceKey(number), line(before.devices, number), line(after.devices, number));
    return saved;
}

QString deviceLine(const ReaderDevice &device)
{
    return device.kind == ReaderDevice::Kind::Keyboard ? u"keyboard "_s + device.path
                                                       : u"serial %1 %2"_s.arg(device.baud).arg(device.path);
}

std::optional<ReaderDevice> deviceOfLine(const QString &line)
{
    const QString kind = line.section(u' ', 0, 0);
    if (kind == u"keyboard"_s) {
        const QString path = line.section(u' ', 1);
        return path.startsWith(u'/') ? std::optional(ReaderDevice{ReaderDevice::Kind::Keyboard, path}) : std::nullopt;
    }
    const ReaderDevice device{ReaderDevice::Kind::Serial, line.section(u' ', 2), line.section(u' ', 1, 1).toInt()};
    const bool known = kind == u"serial"_s && device.path.startsWith(u'/') && readerSpeeds().contains(device.baud);
    return known ? std::optional(device) : std::nullopt;
}

ReaderDevice::Kind kindOfPath(const QString &path)
{
    return path.contains(u"/input/"_s) ? ReaderDevice::Kind::Keyboard : ReaderDevice::Kind::Serial;
}

QStringList foundDevices(const QString &deviceFolder)
{
    const QStringList named = entries(deviceFolder + u"/serial/by-id"_s, {u"*"_s});
    const QStringList serial =
        named.isEmpty() ? entries(deviceFolder, {u"ttyACM*"_s, u"ttyUSB*"_s, u"rfcomm*"_s}) : named;
    return entries(deviceFolder + u"/input/by-id"_s, {u"*-event-kbd"_s}) + serial;
}

} // namespace harrowby::app
