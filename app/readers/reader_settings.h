// SPDX-License-Identifier: MIT
#pragma once

#include "app/shop/office_settings.h"

#include <harrowby/code_reader_settings.h>

#include <QList>
#include <QString>

#include <optional>

namespace harrowby::app {

/// A code reader that is named by its device.
struct ReaderDevice
{
    enum class Kind {
        Keyboard, ///< an input device of the kernel, such as /dev/input/by-id/…-event-kbd
        Serial,
    };

    static constexpr int usualBaud = 9600;

    Kind kind = Kind::Serial;
    QString path;
    int baud = usualBaud; ///< of a serial one; 8 bits, no parity, one stop bit

    bool operator==(const ReaderDevice &) const = default;
};

/// The code readers of this machine; saved settings of this user.
struct ReaderSettings
{
    static constexpr int mostDevices = 4;

    bool typing = true;                         ///< readers that type like a keyboard are told from people
    int gapMs = CodeReaderSettings::UsualGapMs; ///< the longest between two keys
    QString prefix;                             ///< such readers type it before each code
    QList<ReaderDevice> devices;

    bool operator==(const ReaderSettings &) const = default;
};

/// What is not understood counts as not saved.
[[nodiscard]] ReaderSettings readReaderSettings(const OfficeSettings &settings);
/// Saves what differs from `before`. False when something could not be saved.
[[nodiscard]] bool saveReaderSettings(const OfficeSettings &settings, const ReaderSettings &before,
                                      const ReaderSettings &after);

/// One line, as a device is saved.
[[nodiscard]] QString deviceLine(const ReaderDevice &device);
[[nodiscard]] std::optional<ReaderDevice> deviceOfLine(const QString &line);

/// A path below /dev/input is a keyboard's.
[[nodiscard]] ReaderDevice::Kind kindOfPath(const QString &path);
/// The devices of this machine that may be readers: paths that stay the same when it is started again or plugged in
/// elsewhere, where there are such.
[[nodiscard]] QStringList foundDevices(const QString &deviceFolder = QStringLiteral("/dev"));

} // namespace harrowby::app
