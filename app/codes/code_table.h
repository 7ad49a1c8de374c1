// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/deeds.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <optional>
#include <utility>

namespace harrowby::app {

inline constexpr int mostUnits = 32767; ///< that one press of the counter takes

/// A code, and the item that it belongs to.
struct ItemCode
{
    QString code;
    QString stockId;              ///< empty when another item has got its former item's ID
    QString name;                 ///< as stored; empty for an orphan
    int units = 1;                ///< that one scan sells
    bool isOrphan = false;        ///< its item is gone
    std::int64_t storedUnits = 1; ///< as the table has them
};

struct StockItem
{
    QString id;
    QString name;
    QString cost; ///< as stored, of one unit
};

/// Codes of items: the table HarrowbyCode (Code, StockID, Units), beside the IDs of the items, which are codes, too.
/// Each function returns the reason when it fails, which has been told through the records then.
class CodeTable
{
public:
    template <typename T>
    using Answer = Records::Answer<T>;

    /// Why a code was not added, in words for a person.
    using Problem = std::optional<QString>;

    /// The records must outlive it. With deeds, what is added, changed and deleted is told by them.
    explicit CodeTable(Records &records, std::optional<SignedDeeds> deeds = {}) :
        m_records(records), m_deeds(std::move(deeds))
    {
    }

    /// All codes, by item and code.
    [[nodiscard]] Answer<QList<ItemCode>> list() const;
    /// The items whose IDs are among these, exactly.
    [[nodiscard]] Answer<QList<StockItem>> itemsWithIds(const QStringList &ids) const;
    /// At most so many items in whose ID or name the text stands, by name. Small letters find capitals.
    [[nodiscard]] Answer<QList<StockItem>> itemsLike(const QString &text, int most) const;
    /// The entries whose codes are among these, exactly; one for each item of that ID.
    [[nodiscard]] Answer<QList<ItemCode>> entries(const QStringList &codes) const;

    /// Adds a code to an item that there is. Refuses what is no code, units that the counter does not take, and a code
    /// that is taken: as an ID or a code, also in another length of the same number.
    [[nodiscard]] Problem add(const QString &text, const QString &stockId, int units);
    // Of a code as it was read; false, and nothing is changed, when it has gone meanwhile, or is no longer so.
    [[nodiscard]] Answer<bool> setUnits(const ItemCode &seen, int units);
    [[nodiscard]] Answer<bool> remove(const ItemCode &seen);
    /// Gives an orphan to another item.
    [[nodiscard]] Answer<bool> giveTo(const ItemCode &seen, const QString &stockId);

    /// The item has another ID now: its codes follow it, unless a second item has the old one.
    std::optional<DbFailure> itemRenamed(const QString &oldId, const QString &newId);
    /// A new item has got this ID: what codes a former item of this ID has left are not the new one's.
    std::optional<DbFailure> itemAdded(const QString &id);

private:
    [[nodiscard]] Problem takenBy(const QString &code, const QString &stockId) const;
    std::optional<DbFailure> moveCodes(const QString &oldId, const QString &newId);
    [[nodiscard]] std::optional<RecordStatement> told(const QString &what) const;

    Records &m_records;
    std::optional<SignedDeeds> m_deeds;
};

/// That a code needs no entry, as it is its item's ID, in words for a person.
[[nodiscard]] QString ownIdWords(const QString &code);
/// That a code is another item's, in words for a person.
[[nodiscard]] QString belongsToWords(const QString &name, const QString &stockId);
/// Why a code cannot be added to an item, in words for a person: `items` have one of its spellings as their ID,
/// `entries` as their code. Nothing when it can.
[[nodiscard]] std::optional<QString> takenWords(const QString &code, const QString &stockId,
                                                const QList<StockItem> &items, const QList<ItemCode> &entries);

/// Units that a scan can sell, as a person has typed them: a whole number from 1 to mostUnits.
[[nodiscard]] Result<int, QString> readUnits(const QString &text);

/// "MILK (MIL-0001)"
[[nodiscard]] QString itemWords(const QString &name, const QString &id);

} // namespace harrowby::app
