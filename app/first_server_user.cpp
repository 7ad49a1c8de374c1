// SPDX-License-Identifier: MIT
#include "app/first_server_user.h"

#include "app/records/server_words.h"
#include "app/server/server_opening.h"
#include "app/shop/first_user_dialog.h"
#include "app/start/display.h"
#include "app/start/start_message.h"
#include "basic/store_address.h"

#include <harrowby/saved_settings.h>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

Result<void, ExitCode> askForFirstUser(Records &records, const QString &store)
{
    const OfficeSettings settings = {savedSetting, saveSetting};
    FirstUserDialog dialog(storeWords(store), proposeReceipt(settings));
    if (dialog.exec() != QDialog::Accepted)
        return Unexpected(ExitCode::StoreDeclined);
    if (const auto added = addFirstUser(records, dialog.password()); !added) {
        tellProblem(u"The first user could not be added (%1).\nStart again."_s.arg(added.error().reason));
        return Unexpected(ExitCode::StoreRefused);
    }
    if (!saveNewShop(settings, dialog.receipt()))
        tellProblem(u"The title and the currency of the receipts could not be saved.\n"
                    "Check the disk and the folder of the settings file, then enter them in the store's office."_s);
    return {};
}

} // namespace

Result<void, ExitCode> seeToFirstUser(Records &records, const QString &store)
{
    const ServerUsers users = usersOf(records);
    if (users == ServerUsers::There || users == ServerUsers::NotKnown)
        return {};
    if (users == ServerUsers::MayBeAdded && canShowBoxes())
        return askForFirstUser(records, store);
    tellProblem(nobodyYetWords(store));
    return Unexpected(ExitCode::StoreRefused);
}

} // namespace harrowby::app
