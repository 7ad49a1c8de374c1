// SPDX-License-Identifier: MIT
#pragma once

#include <harrowby/db_value.h>

#include <QRandomGenerator>
#include <QString>
#include <QStringList>

namespace harrowby::test {

/// Rows and statements of shops that no shopkeeper would have: repeated, empty, missing and odd texts and figures. The
/// same seed gives the same shop.
class OddShop
{
public:
    explicit OddShop(quint32 seed) : m_random(seed) {}

    [[nodiscard]] DbAssignments item();
    [[nodiscard]] DbAssignments user();
    [[nodiscard]] DbAssignments category();
    [[nodiscard]] DbAssignments purchase();
    [[nodiscard]] DbAssignments settings();
    /// Some columns of an item, to be changed.
    [[nodiscard]] DbAssignments itemChange();

    /// The SELECTs of the window, the report, the reorder list and the office.
    [[nodiscard]] QStringList selects();
    /// An UPDATE, INSERT or DELETE of the window.
    [[nodiscard]] QString change();

    /// Below `limit`.
    [[nodiscard]] int number(int limit) { return static_cast<int>(m_random.bounded(limit)); }

private:
    [[nodiscard]] QString pick(const QStringList &texts) { return texts.at(number(static_cast<int>(texts.size()))); }
    [[nodiscard]] DbValue text(const QStringList &texts);
    [[nodiscard]] DbValue figure();
    [[nodiscard]] QString id();
    [[nodiscard]] QString name();
    [[nodiscard]] QString categoryName();
    [[nodiscard]] QString day();
    [[nodiscard]] QStringList stockSelects();
    [[nodiscard]] QStringList reportSelects();
    [[nodiscard]] QStringList officeSelects();

    QRandomGenerator m_random;
};

} // namespace harrowby::test
