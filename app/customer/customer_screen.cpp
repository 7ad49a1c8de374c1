// SPDX-License-Identifier: MIT
#include "app/customer/customer_screen.h"

#include "app/shop/notice_place.h"
#include "basic/logging.h"
#include "basic/numbers.h"

#include <harrowby/counter.h>

#include <QEvent>
#include <QGuiApplication>
#include <QScreen>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr int mostTries = 3;

QScreen *screenOf(const ScreenFacts &facts)
{
    const auto screens = QGuiApplication::screens();
    const auto found = std::find_if(screens.cbegin(), screens.cend(), [&](const QScreen *screen) {
        return screen->name() == facts.name && screen->geometry() == facts.geometry;
    });
    return found != screens.cend() ? *found : nullptr;
}

TillPlace placeOf(const QWidget &till)
{
    return {till.screen()->geometry(), till.frameGeometry()};
}

} // namespace

CustomerScreen::CustomerScreen(Counter &counter, const QString &title, const QString &currency, const QString &wish,
                               Screens screens) :
    m_counter(counter),
    m_story(title, currency), m_wish(wish), m_screens(std::move(screens))
{
    m_arranging.setSingleShot(true);
    connect(&m_arranging, &QTimer::timeout, this, &CustomerScreen::arrange);
    m_view.installEventFilter(this);
    followCounter();
    followScreens();
    refresh();
    if (m_counter.isOpen())
        followTill();
}

QList<ScreenFacts> CustomerScreen::foundScreens()
{
    QList<ScreenFacts> found;
    for (const QScreen *screen : QGuiApplication::screens())
        found << ScreenFacts{screen->name(), screen->geometry()};
    return found;
}

void CustomerScreen::followCounter()
{
    connect(&m_counter, &Counter::windowOpened, this, &CustomerScreen::followTill);
    connect(&m_counter, &Counter::cartChanged, this, &CustomerScreen::followCart);
    connect(&m_counter, &Counter::purchased, this, [this](const CounterPurchase &purchase) {
        m_story.followPurchase(purchase);
        refresh();
    });
    connect(&m_counter, &Counter::windowClosed, this, [this] {
        m_story.end();
        refresh();
        m_view.hide();
    });
}

void CustomerScreen::followScreens()
{
    connect(qGuiApp, &QGuiApplication::screenAdded, this, &CustomerScreen::followScreen);
    connect(qGuiApp, &QGuiApplication::screenRemoved, this, &CustomerScreen::screensChanged);
    connect(qGuiApp, &QGuiApplication::primaryScreenChanged, this, &CustomerScreen::screensChanged);
    for (QScreen *screen : QGuiApplication::screens())
        followScreen(screen);
}

void CustomerScreen::followScreen(QScreen *screen)
{
    connect(screen, &QScreen::geometryChanged, this, &CustomerScreen::screensChanged);
    screensChanged();
}

void CustomerScreen::followTill()
{
    m_till = salesWindow();
    if (m_till)
        m_till->installEventFilter(this);
    followCart();
    m_arranging.start(0);
}

void CustomerScreen::followCart()
{
    m_story.followCart(m_counter.cart(), asStored(m_counter.total()));
    refresh();
}

void CustomerScreen::showChange(double change)
{
    m_story.followChange(change);
    refresh();
}

bool CustomerScreen::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::Move:
    case QEvent::Resize:
    case QEvent::Show:
    case QEvent::WindowStateChange:
        if (watched == m_till || watched == &m_view)
            m_arranging.start(0);
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

/// At once, before Qt moves the windows of a screen that goes to another one.
void CustomerScreen::screensChanged()
{
    m_misplaced = 0;
    if (m_place && !m_screens().contains(*m_place))
        m_view.hide();
    m_arranging.start(0);
}

void CustomerScreen::arrange()
{
    if (!m_till || !m_till->isVisible() || m_misplaced >= mostTries)
        return m_view.hide();
    const QList<ScreenFacts> screens = m_screens();
    const TillPlace till = placeOf(*m_till);
    const auto place = customerPlace(screens, m_wish, till);
    if (!place) {
        tellMissing(screens);
        return m_view.hide();
    }
    m_told.clear();
    if (m_place != place || !m_view.isVisible())
        return put(*place);
    if (coversTill(m_view.frameGeometry(), till))
        takeBack();
}

/// A window manager may not put the window where it was asked to. It gets some tries, until the screens change.
void CustomerScreen::takeBack()
{
    constexpr int pauseMs = 1000;
    m_view.hide();
    if (++m_misplaced < mostTries)
        m_arranging.start(pauseMs);
    else
        qCWarning(lcWindow) << "The customer's screen is left out: its window is put over the till";
}

void CustomerScreen::put(const ScreenFacts &screen)
{
    m_place = screen;
    m_view.hide(); // a window that fills one screen is not moved to another
    if (QScreen *known = screenOf(screen))
        m_view.setScreen(known);
    m_view.setGeometry(screen.geometry);
    m_view.setWindowState(Qt::WindowFullScreen);
    m_view.show();
}

void CustomerScreen::tellMissing(const QList<ScreenFacts> &screens)
{
    const QString there = screensText(screens);
    if (std::exchange(m_told, there) == there)
        return;
    const QString wish = m_wish.isEmpty() ? u"beside the till's"_s : u'"' + m_wish + u'"';
    qCWarning(lcWindow).noquote() << "There is no screen" << wish << "for the customer. Screens:" << there;
}

} // namespace harrowby::app
