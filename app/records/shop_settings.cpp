// SPDX-License-Identifier: MIT
#include "app/records/shop_settings.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

RecordStatement removing(const QString &name)
{
    return {u"delete from HarrowbySetting where Name = ?"_s, {name}};
}

} // namespace

QString ShopSettings::value(const QString &name, const QString &defaultValue) const
{
    const auto found = read(name);
    return found ? found->value_or(defaultValue) : defaultValue;
}

Records::Answer<std::optional<QString>> ShopSettings::read(const QString &name) const
{
    const auto rows = m_records.read(kept::setting(), {u"select Value from HarrowbySetting where Name = ?"_s, {name}});
    if (!rows)
        return Unexpected(rows.error());
    return rows->isEmpty() ? std::nullopt : std::optional(recordText(rows->constFirst().constFirst()));
}

Records::Answer<QList<std::pair<QString, QString>>> ShopSettings::startingWith(const QString &prefix) const
{
    const auto rows = m_records.read(kept::setting(), {u"select Name, Value from HarrowbySetting"_s, {}});
    if (!rows)
        return Unexpected(rows.error());
    QList<std::pair<QString, QString>> found;
    for (const RecordRow &row : *rows) {
        if (const QString name = recordText(row.at(0)); name.startsWith(prefix))
            found.emplaceBack(name.sliced(prefix.size()), recordText(row.at(1)));
    }
    std::sort(found.begin(), found.end());
    return found;
}

QList<RecordStatement> ShopSettings::saving(const QString &name, const std::optional<QString> &value)
{
    QList<RecordStatement> statements{removing(name)};
    if (value)
        statements << RecordStatement{u"insert into HarrowbySetting (Name, Value) values (?, ?)"_s, {name, *value}};
    return statements;
}

Records::Answer<bool> ShopSettings::replace(const QString &name, const std::optional<QString> &before,
                                            const std::optional<QString> &value, const RecordStatement &told)
{
    const auto isAsBefore = [&]() -> Records::Answer<bool> {
        const auto now = read(name);
        if (!now)
            return Unexpected(now.error());
        return *now == before;
    };
    return m_records.writeTogetherIf(kept::setting(), isAsBefore, saving(name, value) + QList<RecordStatement>{told});
}

std::optional<DbFailure> ShopSettings::save(const QString &name, const QString &value)
{
    const auto saved = m_records.writeTogether(kept::setting(), saving(name, value));
    return saved ? std::nullopt : std::optional(saved.error());
}

std::optional<DbFailure> ShopSettings::remove(const QString &name)
{
    const auto removed = m_records.write(kept::setting(), removing(name));
    return removed ? std::nullopt : std::optional(removed.error());
}

} // namespace harrowby::app
