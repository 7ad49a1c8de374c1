// SPDX-License-Identifier: MIT
#include "app/catalogue/last_import.h"

#include "app/catalogue/import_shelf.h"

using namespace Qt::StringLiterals;

namespace harrowby::app {

Records::Answer<std::int64_t> lastImport(Records &records)
{
    const auto rows =
        records.read(kept::import(), {u"select max(ImportID) from HarrowbyImport where Kind = ? and State = ?"_s,
                                      {kindText(ImportKind::Items), QString(import_state::applied)}});
    if (!rows)
        return Unexpected(rows.error());
    return rows->isEmpty() ? std::int64_t{0} : recordNumber(rows->constFirst().constFirst());
}

QString importedIds()
{
    static_assert(static_cast<int>(RowKind::New) == 1 && static_cast<int>(RowKind::Changed) == 2);
    return u"select StockID from HarrowbyImportRow where ImportID = ? and What in (1, 2) and LeftOut = 0"_s;
}

} // namespace harrowby::app
