// SPDX-License-Identifier: MIT
#pragma once

#include <harrowby/export.h>

#include <QLatin1StringView>
#include <QString>

/// The per-user saved settings of the application "Harrowby", which the component reads and hosts and plugins may
/// write.
///
/// Sections and keys are found under any capitalisation. The values lie in the file Harrowby/Harrowby.ini of the user's
/// configuration folder, which is read afresh at every use.
namespace harrowby {

/// Where a setting is saved, and what counts while nothing is.
struct SettingPlace
{
    QLatin1StringView section;
    QLatin1StringView key;
    QLatin1StringView defaultValue;
};

/// The settings that the component knows.
namespace setting {

/// Whether the daily report goes out by e-mail: "0" or "1".
inline constexpr SettingPlace EmailReport{QLatin1StringView("Option"), QLatin1StringView("EmailReport"),
                                          QLatin1StringView("1")};
/// Whether a purchase prints a receipt: "0" or "1".
inline constexpr SettingPlace PrintReceipt{QLatin1StringView("Option"), QLatin1StringView("UsePOSforReceipt"),
                                           QLatin1StringView("1")};
/// What stands before an amount on a receipt.
inline constexpr SettingPlace Currency{QLatin1StringView("Option"), QLatin1StringView("Currency"),
                                       QLatin1StringView("N")};
/// The head of a receipt. The component takes the caption of its boxes, which is empty, while nothing is saved.
inline constexpr SettingPlace ReceiptTitle{QLatin1StringView("option"), QLatin1StringView("Title"), {}};
inline constexpr SettingPlace ReceiptAddress{QLatin1StringView("option"), QLatin1StringView("address"), {}};
/// Device name of the receipt printer.
inline constexpr SettingPlace ReceiptPrinter{QLatin1StringView("POS"), QLatin1StringView("COM"),
                                             QLatin1StringView("COM1")};

} // namespace setting

/// The saved value, or the default when there is none or the file cannot be read. Never throws.
[[nodiscard]] HARROWBY_EXPORT QString savedSetting(const QString &section, const QString &key,
                                                   const QString &defaultValue = {}) noexcept;

/// Saves a value at once; the others stay. False when it could not be written, and the old value stands then.
/// Never throws.
HARROWBY_EXPORT bool saveSetting(const QString &section, const QString &key, const QString &value) noexcept;

} // namespace harrowby
