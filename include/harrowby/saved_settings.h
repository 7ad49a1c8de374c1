// SPDX-License-Identifier: MIT
#pragma once

#include <harrowby/export.h>

#include <QString>

/// The per-user saved settings of the application "Harrowby", which the component reads and hosts and plugins may
/// write:
///
/// | section | key | value |
/// |---|---|---|
/// | Option | EmailReport | "0" or "1" |
/// | Option | UsePOSforReceipt | "0" or "1" |
/// | Option | Currency | what stands before an amount on a receipt |
/// | option | Title, address | head of a receipt |
/// | POS | COM | name of the receipt printer |
///
/// Sections and keys are found under any capitalisation. The values lie in the file Harrowby/Harrowby.ini of the user's
/// configuration folder, which is read afresh at every use.
namespace harrowby {

/// The saved value, or the default when there is none or the file cannot be read. Never throws.
[[nodiscard]] HARROWBY_EXPORT QString savedSetting(const QString &section, const QString &key,
                                                   const QString &defaultValue = {}) noexcept;

/// Saves a value at once; the others stay. False when it could not be written, and the old value stands then.
/// Never throws.
HARROWBY_EXPORT bool saveSetting(const QString &section, const QString &key, const QString &value) noexcept;

} // namespace harrowby
