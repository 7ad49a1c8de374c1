// SPDX-License-Identifier: MIT
#pragma once

#include <harrowby/export.h>

#include <QLatin1StringView>
#include <QString>

/// The user's saved settings of the application "Harrowby": texts by section and key, found without regard to case. The
/// component reads them, and so may hosts and plugins, which may write them too.
///
/// They lie in Harrowby/Harrowby.ini of the user's configuration folder (XDG_CONFIG_HOME or ~/.config), which is read
/// afresh at each use, on the calling thread; call these functions on the user-interface thread. They need no
/// QApplication. Failures are logged in "harrowby.settings" and told to the FileFailureHandler
/// (harrowby/file_failure.h).
namespace harrowby {

/// Section and key of a setting, and the value that counts while none is saved.
struct SettingPlace
{
    QLatin1StringView section;
    QLatin1StringView key;
    QLatin1StringView defaultValue;
};

/// The settings that the component uses.
namespace saved {

/// Whether the daily report goes out by e-mail: "0" or "1".
inline constexpr SettingPlace EmailReport{QLatin1StringView("Option"), QLatin1StringView("EmailReport"),
                                          QLatin1StringView("1")};
/// Whether a purchase prints a receipt: "0" or "1".
inline constexpr SettingPlace PrintReceipt{QLatin1StringView("Option"), QLatin1StringView("UsePOSforReceipt"),
                                           QLatin1StringView("1")};
/// The currency symbol before an amount on a receipt.
inline constexpr SettingPlace Currency{QLatin1StringView("Option"), QLatin1StringView("Currency"),
                                       QLatin1StringView("N")};
/// The head of a receipt, printed in capitals. While none is saved, the caption of the component's boxes stands there,
/// which is empty.
inline constexpr SettingPlace ReceiptTitle{QLatin1StringView("option"), QLatin1StringView("Title"), {}};
inline constexpr SettingPlace ReceiptAddress{QLatin1StringView("option"), QLatin1StringView("address"), {}};
/// Name of the receipt printer as the print service lists it.
inline constexpr SettingPlace ReceiptPrinter{QLatin1StringView("POS"), QLatin1StringView("COM"),
                                             QLatin1StringView("COM1")};

} // namespace saved

/// The saved value; `defaultValue` when there is none or the file cannot be read. Never throws.
[[nodiscard]] HARROWBY_EXPORT QString savedSetting(const QString &section, const QString &key,
                                                   const QString &defaultValue = {}) noexcept;

/// Saves a value at once and leaves the others as they are. False when it could not be written; the file is unchanged
/// then. Never throws.
HARROWBY_EXPORT bool saveSetting(const QString &section, const QString &key, const QString &value) noexcept;

} // namespace harrowby
