// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/records.h"

#include <QString>

#include <optional>

namespace harrowby::app {

/// The settings that belong to the shop, not to one machine, in the table HarrowbySetting: names and values are texts.
class ShopSettings
{
public:
    /// The records must outlive it.
    explicit ShopSettings(Records &records) : m_records(records) {}

    /// `defaultValue` when there is none or the table cannot be read, which has been told then.
    [[nodiscard]] QString value(const QString &name, const QString &defaultValue = {}) const;
    /// The same, for one who tells it; nothing when there is none.
    [[nodiscard]] Records::Answer<std::optional<QString>> read(const QString &name) const;
    /// All whose name begins with `prefix`, by name without it.
    [[nodiscard]] Records::Answer<QList<std::pair<QString, QString>>> startingWith(const QString &prefix) const;
    /// Saves a value in place of the one that was read before, none in either for a setting that is not there, together
    /// with the deed that tells it. False, and nothing is stored, when it has another value by now.
    [[nodiscard]] Records::Answer<bool> replace(const QString &name, const std::optional<QString> &before,
                                                const std::optional<QString> &value, const RecordStatement &told);
    /// What saves a value, or removes it, for work that is kept together.
    [[nodiscard]] static QList<RecordStatement> saving(const QString &name, const std::optional<QString> &value);

    /// The failure when it could not be saved; it has been told, and the old value stays.
    std::optional<DbFailure> save(const QString &name, const QString &value);
    /// So that `defaultValue` counts again; likewise.
    std::optional<DbFailure> remove(const QString &name);

private:
    Records &m_records;
};

} // namespace harrowby::app
