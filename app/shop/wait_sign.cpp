// SPDX-License-Identifier: MIT
#include "app/shop/wait_sign.h"

#include "theme/colours.h"

#include <QApplication>
#include <QBackingStore>
#include <QPainter>
#include <QScreen>
#include <QWindow>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr QSize signSize(460, 96);
constexpr int gap = 12;
constexpr int headingPoints = 14;
constexpr int textPoints = 11;

struct Words
{
    QString heading;
    QString text;
};

void paint(QPaintDevice &device, const QRect &place, const Words &words)
{
    const Colours &look = Colours::current();
    QPainter painter(&device);
    painter.fillRect(place, look.onAccent);
    painter.fillRect(place.adjusted(2, 2, -2, -2), look.accent);
    painter.setPen(look.onAccent);
    QFont font = QApplication::font();
    font.setPointSizeF(headingPoints);
    font.setBold(true);
    painter.setFont(font);
    QRect half(place.topLeft(), QSize(place.width(), place.height() / 2));
    painter.drawText(half.adjusted(12, 8, -12, 0), Qt::AlignCenter, words.heading);
    font.setPointSizeF(textPoints);
    font.setBold(false);
    painter.setFont(font);
    half.setCoords(place.left(), half.bottom() + 1, place.right(), place.bottom());
    painter.drawText(half.adjusted(12, 0, -12, -8), Qt::AlignCenter | Qt::TextWordWrap, words.text);
}

/// Paints itself completely, so that the window's style sheet does not matter.
class Sign : public QWidget
{
public:
    Sign(QWidget &window, Words words) : QWidget(&window), m_words(std::move(words))
    {
        setObjectName(u"waitSign"_s);
        setAccessibleName(m_words.heading);
        setAccessibleDescription(m_words.text);
        setAttribute(Qt::WA_OpaquePaintEvent);
        setAttribute(Qt::WA_TransparentForMouseEvents);
        resize(signSize.boundedTo(window.size()));
        move((window.width() - width()) / 2, std::min(gap, window.height() - height())); // clear of cart and total
    }

protected:
    void paintEvent(QPaintEvent *) override { paint(*this, rect(), m_words); }

private:
    Words m_words;
};

bool isExposed(const QWidget &window)
{
    return window.windowHandle() != nullptr && window.windowHandle()->isExposed();
}

bool canBear(const QWidget *window)
{
    return window != nullptr && window->isVisible() && !window->isMinimized() && isExposed(*window);
}

/// The active window of this program, else its largest one; null when none is visible.
QWidget *windowInFront()
{
    for (QWidget *window : {QApplication::activeModalWidget(), QApplication::activeWindow()}) {
        if (canBear(window))
            return window;
    }
    // Another program has the focus: the largest one, which is no notice.
    const QWidgetList windows = QApplication::topLevelWidgets();
    QWidget *largest = nullptr;
    for (QWidget *window : windows) {
        const bool real = window->windowType() == Qt::Window || window->windowType() == Qt::Dialog;
        if (real && canBear(window) && (largest == nullptr || window->width() > largest->width()))
            largest = window;
    }
    return largest;
}

} // namespace

/// Used while no window can be painted into. A QWidget is painted on its first expose event, which is not handled
/// during the wait; a QBackingStore flushed into a QWindow is on the screen at once. Qt::ToolTip bypasses the window
/// manager, takes no focus, and is never the last window of the program.
class WaitSign::LoneSign : public QWindow
{
public:
    explicit LoneSign(Words words) : m_words(std::move(words)), m_pixels(this)
    {
        setObjectName(u"waitSign"_s);
        setTitle(m_words.heading);
        setSurfaceType(QSurface::RasterSurface);
        setFlags(Qt::ToolTip | Qt::FramelessWindowHint | Qt::WindowDoesNotAcceptFocus);
        const QRect room = screen()->availableGeometry();
        QRect place({}, signSize.boundedTo(room.size()));
        place.moveCenter(room.center());
        setGeometry(place);
    }

    void paintNow()
    {
        const QRect all({}, size());
        m_pixels.resize(size());
        m_pixels.beginPaint(all);
        paint(*m_pixels.paintDevice(), all, m_words);
        m_pixels.endPaint();
        m_pixels.flush(all);
    }

private:
    Words m_words;
    QBackingStore m_pixels;
};

WaitSign::WaitSign(QString heading, QString text) : m_heading(std::move(heading)), m_text(std::move(text)) {}

WaitSign::~WaitSign()
{
    delete m_sign;
}

void WaitSign::show()
{
    if (m_sign && m_sign->isVisible())
        return;
    if (QWidget *window = windowInFront())
        showIn(*window);
    else
        showAlone();
}

void WaitSign::showIn(QWidget &window)
{
    delete m_sign;
    m_sign = new Sign(window, {m_heading, m_text});
    m_sign->show();
    m_sign->raise();
    m_sign->repaint();
    QMetaObject::invokeMethod(m_sign, &QWidget::hide, Qt::QueuedConnection); // also in the loop of a box
}

void WaitSign::showAlone()
{
    if (!m_loneSign)
        m_loneSign = std::make_unique<LoneSign>(Words{m_heading, m_text});
    if (!m_loneSign->isVisible()) {
        m_loneSign->show();
        QMetaObject::invokeMethod(m_loneSign.get(), &QWindow::hide, Qt::QueuedConnection);
    }
    m_loneSign->raise();
    m_loneSign->paintNow(); // each time: another window may have covered it
}

} // namespace harrowby::app
