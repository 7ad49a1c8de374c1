// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/records.h"

#include <QHash>
#include <QSet>
#include <QString>
#include <QStringList>

#include <optional>

namespace harrowby::app {

/// The categories that the store has, and those that an import makes.
class KnownCategories
{
public:
    /// The records must outlive it.
    explicit KnownCategories(Records &records) : m_records(records) {}

    [[nodiscard]] std::optional<DbFailure> load();

    /// Also the one that is never stored.
    [[nodiscard]] bool has(const QString &name) const;
    /// Rows of that very name.
    [[nodiscard]] int rowsOf(const QString &name) const { return m_stored.value(name); }
    void make(const QString &name);
    /// In the order in which they were made.
    [[nodiscard]] const QStringList &made() const { return m_made; }

private:
    Records &m_records;
    QHash<QString, int> m_stored;
    QStringList m_made;
    QSet<QString> m_madeToo;
};

} // namespace harrowby::app
