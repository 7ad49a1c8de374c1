// SPDX-License-Identifier: MIT
#pragma once

#include "app/codes/code_table.h"
#include "app/records/shop_settings.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace harrowby::app {

/// What a code sells, or why it sells nothing.
struct FoundCode
{
    enum class Kind {
        Item,
        Unknown, ///< nobody has it
        Orphan,  ///< the item that has it is gone
        Several, ///< two items have it
        Odd,     ///< no reader's code; `items` is empty, `problem` says why
        Failed,  ///< the tables could not be read
    };
    Kind kind = Kind::Unknown;
    QString stockId;
    QString name; ///< as stored
    int units = 1;
    std::optional<double> cost; ///< of the whole line, for a code with a price or a weight inside; to the cent
    QStringList items;          ///< two of several
    QString problem;
};

/// Finds the item of a code. First the item with exactly this ID, then the one with exactly this code, then the one
/// whose ID or code is the same number in another length; where these are two items, none. Then, and only by a rule
/// that the shop has switched on, the item whose number stands in a code of the shop's own.
class CodeFinder
{
public:
    /// The records must outlive it.
    explicit CodeFinder(Records &records) : m_table(records), m_settings(records) {}

    [[nodiscard]] FoundCode find(const QString &text) const;

private:
    [[nodiscard]] FoundCode findAmong(const QString &exact, const QStringList &spellings) const;
    [[nodiscard]] FoundCode findByRule(const QString &code) const;
    [[nodiscard]] FoundCode priced(FoundCode item, bool isWeight, double amount) const;

    CodeTable m_table;
    ShopSettings m_settings;
};

/// "InStoreCode.21": the rule that is switched on for codes of this prefix, as InStoreRule::text() writes it.
[[nodiscard]] QString inStoreSetting(const QString &prefix);

} // namespace harrowby::app
