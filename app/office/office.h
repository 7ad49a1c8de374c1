// SPDX-License-Identifier: MIT
#pragma once

#include "app/shop/office_settings.h"

#include <QString>

/// The store's office: its own windows beside the till, for those who may keep it.
namespace harrowby::app {

class StoreGuard;

enum class OfficeEnd {
    Left,    ///< the window was closed, or nobody logged in
    Refused, ///< nobody can be let in; the message has been shown
    Restore, ///< a backup is to take the store's place, for which nobody may have the store open
};

struct OfficeLeaving
{
    OfficeEnd end = OfficeEnd::Left;
    QString backup; ///< that is to be restored
    QString user;   ///< who wants it
};

/// Asks for user name and password and shows the window until it is closed. `reason`: why it is opened again, which the
/// login says.
[[nodiscard]] OfficeLeaving runOffice(StoreGuard &guard, const QString &store, const OfficeSettings &settings,
                                      const QString &reason = {});

} // namespace harrowby::app
