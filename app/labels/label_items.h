// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/records.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace harrowby::app {

/// A code that an item has, and how many units it sells.
struct LabelCode
{
    QString code;
    int units = 1;
};

/// An item of the stock that can be sold, as a label needs it.
struct LabelItem
{
    QString id;
    QString name;
    QString cost; ///< as stored, of one unit
    double available = 0;
    QList<LabelCode> codes; ///< beside the ID; those of one unit first, then by code
    bool isDoubled = false; ///< another item has its ID: the till sells neither, by no code
};

/// Which items: all that is said here holds of each.
struct LabelQuery
{
    enum class Which {
        All,
        WithoutCode, ///< beside the ID
        LastImport,  ///< that it has added or changed
    };
    Which which = Which::All;
    std::optional<QString> category;
    QString text; ///< a part of ID, name or code; small letters find capitals
};

/// Finds items for labels. What fails has been told through the records.
class LabelItems
{
public:
    template <typename T>
    using Answer = Records::Answer<T>;

    /// The records must outlive it.
    explicit LabelItems(Records &records) : m_records(records) {}

    /// By name and ID, with all of their codes.
    [[nodiscard]] Answer<QList<LabelItem>> find(const LabelQuery &query) const;
    /// With its codes as they are now.
    [[nodiscard]] Answer<LabelItem> withCodes(LabelItem item) const;
    /// At most so many, and without codes.
    [[nodiscard]] Answer<QList<LabelItem>> first(const LabelQuery &query, int most) const;
    [[nodiscard]] Answer<qint64> count(const LabelQuery &query) const;
    /// Of the items that can be sold.
    [[nodiscard]] Answer<QStringList> categories() const;
    [[nodiscard]] Answer<bool> hasImport() const;

private:
    [[nodiscard]] Answer<RecordStatement> condition(const LabelQuery &query) const;
    [[nodiscard]] Answer<bool> hasRows(const RecordTable &table) const;
    [[nodiscard]] Answer<QList<LabelItem>> read(const LabelQuery &query, const QString &limit) const;

    Records &m_records;
};

} // namespace harrowby::app
