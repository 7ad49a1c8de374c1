// SPDX-License-Identifier: MIT
#include <harrowby/init.h>

#include "basic/logging.h"
#include "store/inv_basic.h"
#include "ui/inventory.h"

#include <exception>
#include <utility>

namespace harrowby {

void Init::LoadInventory(std::shared_ptr<DbConnection> connection, const QString &userText) noexcept
try {
    // The user who is logged in at the counter is the login panel's business, never the host's.
    static_cast<void>(userText);
    InvBasic::setConnection(std::move(connection));
    Inventory *form = Inventory::defaultInstance();
    form->present();
} catch (const std::exception &error) {
    qCWarning(lcWindow, "The window could not be shown: %s", error.what());
} catch (...) {
    qCWarning(lcWindow, "The window could not be shown");
}

} // namespace harrowby
