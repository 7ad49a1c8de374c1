// SPDX-License-Identifier: MIT
#include "app/errands/errand.h"

#include "app/shop/store_guard.h"
#include "app/shop/store_loss.h"
#include "app/start/start_message.h"

using namespace Qt::StringLiterals;

namespace harrowby::app {

bool storeIsStillThere(const ErrandStore &store)
{
    if (store.guard == nullptr || store.guard->check())
        return true;
    tellOfErrand(lossHeadline(store.guard->loss()));
    return false;
}

void tellOfErrand(const QString &text)
{
    printError(u"harrowby: "_s + text + u'\n');
}

} // namespace harrowby::app
