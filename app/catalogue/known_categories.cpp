// SPDX-License-Identifier: MIT
#include "app/catalogue/known_categories.h"

#include "basic/reserved_categories.h"

using namespace Qt::StringLiterals;

namespace harrowby::app {

std::optional<DbFailure> KnownCategories::load()
{
    const auto rows = m_records.read({u"select CategoryName from InventoryCategory"_s, {}});
    if (!rows)
        return rows.error();
    for (const RecordRow &row : *rows)
        ++m_stored[recordText(row.constFirst())];
    return {};
}

bool KnownCategories::has(const QString &name) const
{
    return name == otherCategory || m_stored.contains(name) || m_madeToo.contains(name);
}

void KnownCategories::make(const QString &name)
{
    if (m_madeToo.contains(name))
        return;
    m_madeToo.insert(name);
    m_made << name;
}

} // namespace harrowby::app
