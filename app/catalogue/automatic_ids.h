// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/records.h"

#include <QHash>
#include <QSet>
#include <QString>

#include <cstdint>
#include <functional>

namespace harrowby::app {

/// Automatic IDs for many items, one after the other, as the stock form would give them; but none that is a code, since
/// a scan would find two items.
class AutomaticIds
{
public:
    /// `isInFile`: whether a row of the file has the ID, or a code like it. The records must outlive it.
    AutomaticIds(Records &records, std::function<bool(const QString &id)> isInFile) :
        m_records(records), m_isInFile(std::move(isInFile))
    {
    }

    /// Empty when the numbers have run out.
    [[nodiscard]] Records::Answer<QString> next(const QString &category);

private:
    struct Series
    {
        QSet<QString> taken;
        std::int16_t last = 0;
        bool hasEnded = false;
    };
    [[nodiscard]] Records::Answer<Series> begin(const QString &prefix) const;

    Records &m_records;
    std::function<bool(const QString &)> m_isInFile;
    QHash<QString, Series> m_series; ///< by prefix
};

} // namespace harrowby::app
