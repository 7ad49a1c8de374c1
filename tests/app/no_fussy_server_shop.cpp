// SPDX-License-Identifier: MIT
#include "tests/app/fussy_shop.h"

namespace harrowby::app::test {

FussyShop fussyServerShop(const QString &address)
{
    qFatal("This build knows no servers: %s", qPrintable(address));
}

} // namespace harrowby::app::test
