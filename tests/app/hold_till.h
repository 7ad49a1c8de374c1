// SPDX-License-Identifier: MIT
#pragma once

#include "app/hold/hold_desk.h"
#include "tests/app/fussy_shop.h"
#include "tests/support/counter.h"

#include <harrowby/counter.h>

#include <QDialog>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QTimer>

#include <deque>
#include <functional>
#include <memory>

namespace harrowby::app::test {

/// A till at which carts are held and recalled, with five items, anew for each test function.
class HoldTill : public QObject
{
    Q_OBJECT

protected Q_SLOTS:
    void init();
    void cleanup();

protected:
    [[nodiscard]] static harrowby::Counter &counter() { return harrowby::Counter::instance(); }
    [[nodiscard]] QStringList cart() const { return m_till->cart(); }
    void press(const QString &name) const;
    /// Runs `act` when the next dialog is shown, after those that were asked for before.
    void inNextDialog(const std::function<void(QDialog &)> &act);
    void meetDialog();
    void answerNextBox(const QString &begin, const QString &button);
    void answerRecall(const QString &word, const QString &button);
    /// Holds what is in the cart under a word, without the dialog.
    void holdAs(const QString &word);
    [[nodiscard]] HeldCart heldCart(const QString &word);
    [[nodiscard]] QStringList heldWords();
    [[nodiscard]] QStringList heldLines() const;

    std::unique_ptr<harrowby::test::Counter> m_till;
    std::unique_ptr<Records> m_records;
    Fuss *m_fuss = nullptr; ///< of the records
    std::unique_ptr<HoldDesk> m_desk;
    std::unique_ptr<HeldCarts> m_carts;
    QStringList m_said;
    std::deque<std::function<void(QDialog &)>> m_acts;
    QTimer m_poll;
    int m_dialogs = 0;
};

} // namespace harrowby::app::test
