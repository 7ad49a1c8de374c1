// SPDX-License-Identifier: MIT
#pragma once

#include "app/till/till.h"
#include "tests/doubles/database.h"
#include "tests/support/counter.h"
#include "tests/ui/held_book.h"
#include "tests/ui/paid_book.h"
#include "tests/ui/random_choice.h"

#include <QMap>
#include <QObject>
#include <QRandomGenerator>
#include <QStringList>

#include <functional>
#include <memory>
#include <vector>

class QDialog;

namespace harrowby::test {

/// The store program's own at the counter, as a random user meets it: codes that are typed by a reader or read by a
/// named device, carts that are held and recalled here and at another till, payments, and the search that finds
/// anywhere. Watches that a code sells its own item alone, that no cart is lost or comes back twice, that the codes
/// stay, and that the payments of a day come to its purchases.
class RandomHost : public QObject
{
    Q_OBJECT

public:
    struct Figures
    {
        int sold = 0;    ///< by a code
        int refused = 0; ///< codes
        int held = 0;
        int recalled = 0;
        int paid = 0; ///< otherwise than by "Purchase Cart" alone

        Figures &operator+=(const Figures &other);
    };

    /// Before the window opens; gives it the store program's connection.
    explicit RandomHost(Counter &counter);
    ~RandomHost() override;

    /// `meanwhile` may do something while one of the program's boxes is open; they are answered from this seed on.
    void watch(std::function<void(QRandomGenerator &)> meanwhile, quint32 seed);
    /// This box is answered by somebody else.
    static void leave(QDialog &dialog);

    void scan(QRandomGenerator &random);
    void press(const QString &button);
    void pay(QRandomGenerator &random);
    void useAnotherTill(QRandomGenerator &random);

    /// Between two actions; `nested` is how many have been entered in the middle of another one.
    void look(int nested);
    /// What was seen that must not be.
    [[nodiscard]] QStringList problems();
    /// The same at the end of a day, when nothing keeps the file locked.
    [[nodiscard]] QStringList problemsOfTheDay();
    [[nodiscard]] Figures figures() const;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    using Units = QMap<QString, double>; ///< of the cart, by item
    struct Sale
    {
        Units before;
        int nested = 0;
        int others = 0;
    };

    void fillTables();
    [[nodiscard]] QString randomCode(QRandomGenerator &random) const;
    void typeCode(const QString &code, QRandomGenerator &random);
    void beginSale();
    void endSale(const QString &code);
    [[nodiscard]] QStringList itemsOf(const QString &code);
    void use(QDialog &dialog, quint32 seed, int step);
    void useOnce(QDialog &dialog, QRandomGenerator &random);

    Counter &m_counter;
    HeldBook m_book;
    PaidBook m_paid;
    WatchedRecords m_records;
    Database m_office; ///< another program at the same file: the office, or the till beside this one
    WatchedRecords m_others;
    std::vector<Sale> m_sales; ///< that are under way, the outermost first
    std::unique_ptr<app::Till> m_till;
    std::function<void(QRandomGenerator &)> m_meanwhile;
    QRandomGenerator m_boxSeeds;
    QStringList m_codes;
    QStringList m_problems;
    Figures m_figures;
    int m_elapsed = 0; ///< ms, of the reader's keys
    int m_nested = 0;
    int m_saleCount = 0;
};

} // namespace harrowby::test
