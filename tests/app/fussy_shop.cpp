// SPDX-License-Identifier: MIT
#include "tests/app/fussy_shop.h"

#include "engine/database.h"
#include "tests/doubles/server_shop.h"

#include <utility>

namespace harrowby::app::test {

namespace {

struct OwnFile
{
    SqliteDatabase database;
};

class FileOfAnotherTill final : OwnFile, public SqliteRecords
{
public:
    explicit FileOfAnotherTill(SqliteDatabase file) : OwnFile{std::move(file)}, SqliteRecords(database.get()) {}
};

} // namespace

FussyShop fussyShop(const harrowby::test::ShopFile &shop)
{
    if (harrowby::test::isOnServer(shop.path()))
        return fussyServerShop(shop.path());
    auto records = std::make_unique<FussyRecords>(shop.handle());
    Fuss *fuss = records.get();
    return {std::move(records), fuss};
}

std::unique_ptr<Records> otherTillsRecords(const harrowby::test::ShopFile &shop)
{
    if (harrowby::test::isOnServer(shop.path()))
        return fussyServerShop(shop.path()).records;
    auto file = openDatabase(shop.path(), OpenMode::Write);
    if (!file)
        qFatal("%s", qPrintable(file.error().reason));
    return std::make_unique<FileOfAnotherTill>(*std::move(file));
}

} // namespace harrowby::app::test
