// SPDX-License-Identifier: MIT
#include "app/records/store_records.h"

#include "app/records/file_records.h"
#include "app/records/server_engine.h"
#include "app/records/server_words.h"
#include "basic/store_address.h"

#include <utility>

namespace harrowby::app {

Result<std::unique_ptr<StoreRecords>, QString> openStoreRecords(const QString &store, Access access,
                                                                std::function<bool()> goesOn)
{
    if (!isServer(store)) {
        auto records = FileRecords::open(store, access);
        if (!records)
            return Unexpected(records.error());
        (*records)->setWatch(std::move(goesOn));
        return std::unique_ptr<StoreRecords>(*std::move(records));
    }
    const auto engine = serverEngine();
    if (!engine)
        return Unexpected(problemWords({ServerProblem::Kind::NoPackage, engine.error(), {}}, store));
    auto records = (*engine)->openRecords(store, access, std::move(goesOn), {});
    if (!records)
        return Unexpected(problemWords(records.error(), store));
    return *std::move(records);
}

} // namespace harrowby::app
