// SPDX-License-Identifier: MIT
#pragma once

#include "app/catalogue/item_census.h"
#include "app/records/records.h"

#include <QHash>
#include <QString>
#include <QStringList>

#include <optional>

namespace harrowby::app {

/// What stands against the IDs of new items. The till finds and deletes an item by the capitals of its ID, and a scan
/// finds one by its ID or by a code.
class NewIds
{
public:
    /// Both must outlive it.
    NewIds(Records &records, const ItemCensus &census) : m_records(records), m_census(census) {}

    /// Looks these up in the store, a piece of the file at a time.
    [[nodiscard]] std::optional<DbFailure> lookUp(const QStringList &ids);
    /// Of one that was looked up, in words for a person.
    [[nodiscard]] std::optional<QString> problemOf(const QString &id) const;

private:
    [[nodiscard]] std::optional<DbFailure> lookUpItems(const QStringList &ids);
    [[nodiscard]] std::optional<DbFailure> lookUpCodes(const QStringList &ids);

    Records &m_records;
    const ItemCensus &m_census;
    std::optional<bool> m_hasCodes;   ///< whether there is any code
    QHash<QString, QString> m_items;  ///< words for an item of the store, by its ID in capitals
    QHash<QString, QString> m_owners; ///< words for the item that has the code, by code
};

} // namespace harrowby::app
