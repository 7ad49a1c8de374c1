// SPDX-License-Identifier: MIT
#pragma once

#include "app/shop/office_settings.h"

#include <QString>

#include <functional>

/// The store's office: its own windows beside the till, for those who may keep it.
namespace harrowby::app {

struct OfficeStore;

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
/// login says. `loss`: what has happened to the store once it is lost, and nothing before.
[[nodiscard]] OfficeLeaving runOffice(const OfficeStore &store, const OfficeSettings &settings, const QString &reason,
                                      const std::function<QString()> &loss = {});

/// A store that could not be reached is there again: what is shown of it is read anew.
void readOfficeAnew();

} // namespace harrowby::app
