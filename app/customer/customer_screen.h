// SPDX-License-Identifier: MIT
#pragma once

#include "app/customer/customer_place.h"
#include "app/customer/customer_view.h"

#include <QObject>
#include <QPointer>
#include <QTimer>

#include <functional>

class QScreen;

namespace harrowby {
class Counter;
} // namespace harrowby

namespace harrowby::app {

/// Shows the customer what is sold, on a screen other than the till's. While there is no such screen its window is
/// hidden; nothing else depends on it.
class CustomerScreen final : public QObject
{
    Q_OBJECT

public:
    using Screens = std::function<QList<ScreenFacts>()>;

    /// The counter must outlive it. `wish` is the number or the name of the screen, or empty (customerPlace()).
    CustomerScreen(Counter &counter, const QString &title, const QString &currency, const QString &wish,
                   Screens screens = foundScreens);

    /// What the customer gets back of what was handed over for the last purchase.
    void showChange(double change);
    [[nodiscard]] const CustomerView &view() const { return m_view; }

    /// Those of the display, in the system's order.
    [[nodiscard]] static QList<ScreenFacts> foundScreens();

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void followCounter();
    void followScreens();
    void followScreen(QScreen *screen);
    void followCart();
    void followTill();
    void screensChanged();
    void arrange();
    void put(const ScreenFacts &screen);
    void takeBack();
    void tellMissing(const QList<ScreenFacts> &screens);
    void refresh() { m_view.setPage(m_story.page()); }

    Counter &m_counter;
    CustomerStory m_story;
    QString m_wish;
    Screens m_screens;
    CustomerView m_view;
    QPointer<QWidget> m_till;
    std::optional<ScreenFacts> m_place; ///< where the window is
    int m_misplaced = 0;                ///< how often the window manager has put it over the till
    QString m_told;                     ///< the screens, when the log was told that the wished one is missing
    QTimer m_arranging;                 ///< once Qt has handled what moves the windows
};

} // namespace harrowby::app
