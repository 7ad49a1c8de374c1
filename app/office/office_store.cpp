// SPDX-License-Identifier: MIT
#include "app/office/office_store.h"

#include "app/records/sqlite_records.h"
#include "app/shop/schema.h"

namespace harrowby::app {

OfficeStore officeStore(sqlite3 *file, const QString &path)
{
    return {path, std::make_shared<SqliteRecords>(file), isOwnStore(file), file};
}

} // namespace harrowby::app
