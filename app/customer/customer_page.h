// SPDX-License-Identifier: MIT
#pragma once

#include <harrowby/counter.h>

#include <QString>
#include <QStringList>

#include <cstddef>
#include <map>
#include <optional>
#include <vector>

namespace harrowby::app {

/// A line of the cart as the customer sees it: no ID, nothing of the stock.
struct CustomerLine
{
    QString name; ///< on one line, and not longer than a screen can show
    double quantity = 0;
    double cost = 0; ///< of the line

    bool operator==(const CustomerLine &) const = default;
};

/// What stands on the customer's screen.
struct CustomerPage
{
    enum class Kind {
        Welcome, ///< nothing is being sold
        Cart,
        Thanks,
    };

    Kind kind = Kind::Welcome;
    QString title;    ///< the shop's; may be empty
    QString currency; ///< before an amount that is to be paid; empty when the shop has chosen none
    std::vector<CustomerLine> lines;
    std::optional<std::size_t> last; ///< of the lines, the one that was added to last
    double total = 0;
    double change = 0; ///< with Thanks; 0 for none

    bool operator==(const CustomerPage &) const = default;
};

/// Follows the counter, and says what stands on the screen.
class CustomerStory
{
public:
    CustomerStory(const QString &title, const QString &currency);

    [[nodiscard]] const CustomerPage &page() const { return m_page; }

    void followCart(const std::vector<CounterLine> &lines, double total);
    /// Stays until the cart changes. Nobody is thanked for a purchase whose row was not written.
    void followPurchase(const CounterPurchase &purchase);
    /// Of the purchase that was followed last, before or after followPurchase().
    void followChange(double change);
    /// The till has been closed.
    void end();

private:
    CustomerPage m_page;
    std::map<QString, double> m_quantities; ///< in the cart, by stock ID
    QString m_lastId;                       ///< of the line that was added to last
};

/// An amount as it is to be paid, with the shop's currency.
[[nodiscard]] QString customerAmount(const CustomerPage &page, double amount);

/// All that a page says, a line each.
[[nodiscard]] QStringList customerTexts(const CustomerPage &page);

/// Which lines of a cart are in sight: those around the last item when not all of them are.
struct LinesInSight
{
    std::size_t first = 0;
    std::size_t count = 0;

    bool operator==(const LinesInSight &) const = default;
};

/// `rows`: as many as there is room for, one each among them for the words on what is above and below.
[[nodiscard]] LinesInSight linesInSight(std::size_t lines, std::size_t last, std::size_t rows);

} // namespace harrowby::app
