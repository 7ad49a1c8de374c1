// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/counter.h"

#include <harrowby/counter.h>

#include <QStringList>

/// A host at the counter, as the tests of it stand there.
namespace harrowby::test {

/// Writes down what it is told, in order: "loggedIn ANN", "cartChanged" …
class Guest : public QObject
{
public:
    Guest();

    /// What has been told since the last call; waits for nothing but the event loop's queue.
    [[nodiscard]] QStringList heard();
    /// Of the purchases that were told.
    std::vector<CounterPurchase> purchases;
    std::vector<CounterUser> users;

private:
    QStringList m_heard;
};

/// "A1|TEA|2|5|" for a line; "hand" at the end when its cost was changed by hand.
[[nodiscard]] QString lineText(const CounterLine &line);
[[nodiscard]] QStringList lineTexts(const std::vector<CounterLine> &lines);
/// "reason: line -> quantity|cost"
[[nodiscard]] QStringList misfitTexts(const std::vector<CounterMisfit> &misfits);

/// Opens the window of a shop with teas, a safe for 1,250.00, an item that is disabled and one that cannot be sold;
/// ANN, who has every right, is logged in with PW.
void openForGuests(Counter &till);

/// For QCOMPARE.
[[nodiscard]] const char *name(CounterAnswer answer);

} // namespace harrowby::test
