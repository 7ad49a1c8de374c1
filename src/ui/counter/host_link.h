// SPDX-License-Identifier: MIT
#pragma once

#include "ui/counter/counter_events.h"

#include <QObject>
#include <QPointer>

#include <deque>
#include <functional>
#include <optional>
#include <utility>
#include <vector>

class QAbstractItemModel;

namespace harrowby {

class CodeTaker;
class Inventory;

/// Between the process's window and the host's Counter: which window is open, what the host wants, and what it is told.
/// It outlives every window, so that what a window leaves behind is still told.
class HostLink final : public QObject
{
    Q_OBJECT

public:
    [[nodiscard]] static HostLink &instance();

    /// The window has been loaded: it is the counter from now on.
    void open(Inventory &window);
    /// The window closes, or is destroyed. Nothing when it is not the counter (any more).
    void close(const Inventory &window);
    /// Null without one, and while it loads or closes.
    [[nodiscard]] Inventory *window() const { return m_window; }

    using Follower = std::function<void(const CounterEvent &)>;
    void follow(Follower follower) { m_follower = std::move(follower); }
    /// While nobody follows, nothing is noted.
    [[nodiscard]] bool isFollowed() const { return static_cast<bool>(m_follower); }

    /// Notes what a handler has done. It is told once the outermost handler has returned.
    void note(CounterEvent event);
    /// The outermost handler has returned: what is noted goes to the event loop.
    void release() noexcept;
    /// Tells through the event loop, without waiting for a handler that runs.
    void tell(CounterEvent event);

    /// What is taken as a code from now on; empty while the host takes none.
    void takeCodes(const std::optional<CodeReaderSettings> &settings);
    /// Whether the code told last was read whole, and the host knew it.
    [[nodiscard]] bool isLastCodeGood() const { return m_lastCodeGood; }
    void judgeLastCode(bool good) { m_lastCodeGood = good; }

    /// Of a purchase that may not have been told yet: see Counter::setKnownRow().
    void setKnownRow(const QString &purchaseId, CounterPurchase::Row row) { m_knownRow = {purchaseId, row}; }
    [[nodiscard]] std::optional<CounterPurchase::Row> takeKnownRow(const QString &purchaseId)
    {
        const auto known = std::exchange(m_knownRow, std::nullopt);
        return known && known->first == purchaseId ? std::optional(known->second) : std::nullopt;
    }

private:
    HostLink() = default;
    void followCart(const QAbstractItemModel *cart);
    void noteCartChange();
    void tellNext();

    Inventory *m_window = nullptr;
    QPointer<const QAbstractItemModel> m_cart;
    Follower m_follower;
    std::vector<CounterEvent> m_noted;
    bool m_cartNoted = false;
    std::deque<CounterEvent> m_told; ///< one posted call of tellNext() for each
    QPointer<CodeTaker> m_codes;     ///< of the application, since the host has taken codes
    bool m_lastCodeGood = true;
    std::optional<std::pair<QString, CounterPurchase::Row>> m_knownRow;
};

} // namespace harrowby
