// SPDX-License-Identifier: MIT
#pragma once

#include "tests/app/fussy_records.h"
#include "tests/doubles/shop_file.h"

#include <memory>

namespace harrowby::app::test {

struct FussyShop
{
    std::unique_ptr<Records> records;
    Fuss *fuss = nullptr; ///< theirs
};

/// Records of a test's shop, whichever engine it is on.
[[nodiscard]] FussyShop fussyShop(const harrowby::test::ShopFile &shop);
/// Of another till at the same shop, over a connection of its own.
[[nodiscard]] std::unique_ptr<Records> otherTillsRecords(const harrowby::test::ShopFile &shop);
/// On a server; ends the test program when it cannot be reached.
[[nodiscard]] FussyShop fussyServerShop(const QString &address);

} // namespace harrowby::app::test
