// SPDX-License-Identifier: MIT
#include "app/errands/errand.h"

#include "app/shop/store_guard.h"
#include "app/shop/store_loss.h"
#include "app/start/start_message.h"

#include <pwd.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace harrowby::app {

bool storeIsStillThere(const ErrandStore &store)
{
    if (store.guard.check())
        return true;
    tellOfErrand(lossHeadline(store.guard.loss()));
    return false;
}

void tellOfErrand(const QString &text)
{
    printError(u"harrowby: "_s + text + u'\n');
}

QString commandLineUser()
{
    const uid_t user = ::getuid();
    const struct passwd *entry = ::getpwuid(user); // the program has one thread when it begins
    const QString name = entry != nullptr ? QString::fromLocal8Bit(entry->pw_name) : QString::number(user);
    return u"command line (%1)"_s.arg(name);
}

} // namespace harrowby::app
