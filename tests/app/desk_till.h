// SPDX-License-Identifier: MIT
#pragma once

#include "app/till/till.h"
#include "tests/app/fussy_records.h"
#include "tests/support/counter.h"

#include <harrowby/counter.h>

#include <QObject>
#include <QString>

#include <memory>

namespace harrowby::app::test {

/// The store program's till "DESK 1" at the real window of a shop, anew for each test function. Boxes that
/// no test answers are answered with yes. It keeps the ID of the last purchase, as texts name it.
class DeskTill : public QObject
{
    Q_OBJECT

protected:
    void makeShop()
    {
        m_counter = std::make_unique<harrowby::test::Counter>();
        m_counter->file.addItem(QStringLiteral("A1"), QStringLiteral("TEA"), 2.5, 30);
        m_records = std::make_unique<FussyRecords>(m_counter->file.handle());
        m_id = QStringLiteral("no purchase yet");
    }
    /// What it is to find in the shop is there before.
    void makeTill()
    {
        const OfficeSettings settings = {
            [](const QString &, const QString &, const QString &defaultValue) { return defaultValue; }, {}};
        m_till = std::make_unique<Till>(
            harrowby::Counter::instance(), *m_records, settings, [] {}, CashStation{QStringLiteral("DESK 1"), nullptr});
        connect(&harrowby::Counter::instance(), &harrowby::Counter::purchased, m_till.get(),
                [this](const CounterPurchase &purchase) { m_id = purchase.id; });
    }
    void openWindow()
    {
        m_counter->boxes.answerTheRest([](const QString &) { return Answer::Yes; });
        m_counter->open();
        m_counter->logIn();
        QCoreApplication::sendPostedEvents();
    }
    void click(const char *name)
    {
        m_counter->click(name);
        QCoreApplication::sendPostedEvents();
    }
    [[nodiscard]] QString withoutId(QString text) const { return text.replace(m_id, QStringLiteral("ID")); }

    std::unique_ptr<harrowby::test::Counter> m_counter;
    std::unique_ptr<FussyRecords> m_records;
    std::unique_ptr<Till> m_till;
    QString m_id; ///< of the last purchase
};

} // namespace harrowby::app::test
