// SPDX-License-Identifier: MIT
#pragma once

#include "app/cash/payments.h"
#include "app/cash/run_locks.h"
#include "tests/app/fussy_shop.h"
#include "tests/support/counter.h"

#include <harrowby/counter.h>

#include <QObject>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>

namespace harrowby::app::test {

/// A till whose purchases are paid, with three items, anew for each test function. Its clock stands still; two
/// purchases of one second share neither ID nor payment.
class CashTill : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

protected:
    [[nodiscard]] static harrowby::Counter &counter() { return harrowby::Counter::instance(); }
    [[nodiscard]] const harrowby::test::ShopFile &file() const { return m_till->file; }
    [[nodiscard]] QString locksPath() const;
    /// What puts rows into the order in which they were written.
    [[nodiscard]] QString rowPlace() const;
    /// A run of the program at the file, with the window's events taken.
    void startRun();
    void endRun();
    /// As a kill: what it has noted stays, and its lock is gone.
    void killRun();
    /// Has one unit of an item in the cart.
    void fillCart(const QString &id = QStringLiteral("A1"));
    /// Answers the counter's question about the cart of fillCart("A1").
    void answerQuestion(Answer answer, const std::function<void()> &meanwhile = {});
    /// "Purchase Cart" with one TEA, and no "Cash …".
    void purchasePlainly();
    void payCash(Cents given, Answer answer = Answer::Yes);
    void laterBy(int seconds);
    static void takeEvents();
    /// State, purchase, way, amount, given, total, seller, drawer, run, origin of each row.
    [[nodiscard]] QStringList payments() const;
    [[nodiscard]] QString onePurchase() const;
    /// The sums of purchases and of payments, in cents; equal when all is well.
    [[nodiscard]] QString sums() const;

    std::unique_ptr<harrowby::test::Counter> m_till;
    std::unique_ptr<Records> m_records;
    Fuss *m_fuss = nullptr;      ///< of the records
    QTemporaryDir m_locksFolder; ///< where the store is no file
    std::shared_ptr<FileRunLocks> m_locks;
    std::unique_ptr<Payments> m_payments;
    QStringList m_told;     ///< by the signals
    QStringList m_failures; ///< that a person is told of
};

} // namespace harrowby::app::test
