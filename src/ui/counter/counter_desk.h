// SPDX-License-Identifier: MIT
#pragma once

#include <harrowby/counter.h>

#include <optional>
#include <vector>

class QWidget;

namespace harrowby {

class Inventory;

/// What a host sees and presses at an open window; see Counter.
class CounterDesk
{
public:
    /// Short-lived: made for one call. The window must outlive it.
    explicit CounterDesk(Inventory &window) : m_window(window) {}

    [[nodiscard]] std::optional<CounterUser> user() const;
    [[nodiscard]] std::vector<CounterLine> cart() const;
    [[nodiscard]] float total() const;
    [[nodiscard]] bool isBusy() const;

    // counter_presses.cpp
    CounterAnswer sell(const QString &stockId, int units) const;
    CounterAnswer purchase() const;
    CounterAnswer takeCart(std::vector<CounterLine> &lines) const;
    CounterAnswer putCart(const std::vector<CounterLine> &lines, std::vector<CounterMisfit> &misfits) const;
    CounterAnswer readAgain() const;

    void addButton(QWidget *button) const;
    void setBanner(QWidget *banner) const;

private:
    template <typename Press>
    CounterAnswer run(Press &&press) const;
    void putLines(const std::vector<CounterLine> &lines, std::vector<CounterMisfit> &misfits) const;

    Inventory &m_window;
};

} // namespace harrowby
