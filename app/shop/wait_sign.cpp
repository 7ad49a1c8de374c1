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
constexpr int buttonRoom = 60; ///< more of it where there is a button
constexpr QSize buttonSize(220, 44);
constexpr int gap = 12;
constexpr int headingPoints = 14;
constexpr int textPoints = 11;
constexpr int barHeight = 6;

struct Face
{
    WaitWords words;
    int step = -1; ///< of what moves; -1 for nothing
};

QSize sizeOf(const WaitWords &words)
{
    return words.button.isEmpty() ? signSize : signSize + QSize(0, buttonRoom);
}

QRect buttonOn(const QSize &sign)
{
    QRect place({}, buttonSize.boundedTo(sign));
    place.moveCenter(QRect({}, sign).center());
    place.moveBottom(sign.height() - barHeight - 10);
    return place;
}

void setFont(QPainter &painter, int points, bool bold)
{
    QFont font = QApplication::font();
    font.setPointSizeF(points);
    font.setBold(bold);
    painter.setFont(font);
}

/// A piece that goes to and fro.
void paintBar(QPainter &painter, const QRect &place, int step)
{
    constexpr int steps = 24;
    const int along = step % (2 * steps);
    const int piece = place.width() / 5;
    const int left = (place.width() - piece) * (along < steps ? along : 2 * steps - along) / steps;
    painter.fillRect(place.left() + left, place.top(), piece, place.height(), Colours::current().onAccent);
}

void paintButton(QPainter &painter, const QRect &place, const QString &caption)
{
    const Colours &look = Colours::current();
    painter.fillRect(place, look.onAccent);
    painter.setPen(look.accent);
    setFont(painter, textPoints, true);
    painter.drawText(place, Qt::AlignCenter, caption);
}

void paint(QPaintDevice &device, const QRect &place, const Face &face)
{
    const Colours &look = Colours::current();
    QPainter painter(&device);
    painter.fillRect(place, look.onAccent);
    const QRect inside = place.adjusted(2, 2, -2, -2);
    painter.fillRect(inside, look.accent);
    painter.setPen(look.onAccent);
    setFont(painter, headingPoints, true);
    const int wordsHeight = std::min(signSize.height(), place.height());
    QRect half(place.topLeft(), QSize(place.width(), wordsHeight / 2));
    painter.drawText(half.adjusted(12, 8, -12, 0), Qt::AlignCenter, face.words.heading);
    setFont(painter, textPoints, false);
    half.setCoords(place.left(), half.bottom() + 1, place.right(), place.top() + wordsHeight - 1);
    painter.drawText(half.adjusted(12, 0, -12, -8), Qt::AlignCenter | Qt::TextWordWrap, face.words.text);
    if (!face.words.button.isEmpty())
        paintButton(painter, buttonOn(place.size()).translated(place.topLeft()), face.words.button);
    if (face.step >= 0)
        paintBar(painter, {inside.left(), inside.bottom() - barHeight + 1, inside.width(), barHeight}, face.step);
}

QRect inPixels(const QRect &place, qreal ratio)
{
    return {(QPointF(place.topLeft()) * ratio).toPoint(), (QSizeF(place.size()) * ratio).toSize()};
}

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

/// Of a box that was answered right before the wait, the picture would stay there until the wait is over.
void repaintWindows()
{
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget *window : windows) {
        if (canBear(window))
            window->repaint();
    }
}

} // namespace

/// Paints itself completely, so that the window's style sheet does not matter.
class WaitSign::Board : public QWidget
{
public:
    explicit Board(QWidget &window) : QWidget(&window)
    {
        setObjectName(u"waitSign"_s);
        setAttribute(Qt::WA_OpaquePaintEvent);
        setAttribute(Qt::WA_TransparentForMouseEvents);
    }

    void setFace(const Face &face)
    {
        m_face = face;
        setAccessibleName(face.words.heading);
        setAccessibleDescription(face.words.text);
        const QWidget &window = *parentWidget();
        resize(sizeOf(face.words).boundedTo(window.size()));
        move((window.width() - width()) / 2, std::min(gap, window.height() - height())); // clear of cart and total
    }

    [[nodiscard]] std::optional<Button> button() const
    {
        if (!isVisible() || m_face.words.button.isEmpty())
            return {};
        const QWidget &window = *this->window();
        const QRect place(mapTo(&window, buttonOn(size()).topLeft()), buttonOn(size()).size());
        return Button{window.internalWinId(), inPixels(place, window.devicePixelRatio())};
    }

protected:
    void paintEvent(QPaintEvent *) override { paint(*this, rect(), m_face); }

private:
    Face m_face;
};

/// Used while no window can be painted into. A QWidget is painted on its first expose event, which is not handled
/// during the wait; a QBackingStore flushed into a QWindow is on the screen at once. Qt::ToolTip bypasses the window
/// manager, takes no focus, and is never the last window of the program.
class WaitSign::LoneSign : public QWindow
{
public:
    LoneSign() : m_pixels(this)
    {
        setObjectName(u"waitSign"_s);
        setSurfaceType(QSurface::RasterSurface);
        setFlags(Qt::ToolTip | Qt::FramelessWindowHint | Qt::WindowDoesNotAcceptFocus);
    }

    void setFace(const Face &face)
    {
        m_face = face;
        setTitle(face.words.heading);
        const QRect room = screen()->availableGeometry();
        QRect place({}, sizeOf(face.words).boundedTo(room.size()));
        place.moveCenter(room.center());
        if (place != geometry())
            setGeometry(place);
    }

    void paintNow()
    {
        const QRect all({}, size());
        m_pixels.resize(size());
        m_pixels.beginPaint(all);
        paint(*m_pixels.paintDevice(), all, m_face);
        m_pixels.endPaint();
        m_pixels.flush(all);
    }

    [[nodiscard]] std::optional<Button> button() const
    {
        if (!isVisible() || m_face.words.button.isEmpty())
            return {};
        return Button{winId(), inPixels(buttonOn(size()), devicePixelRatio())};
    }

private:
    Face m_face;
    QBackingStore m_pixels;
};

WaitSign::WaitSign(QString heading, QString text) : WaitSign(WaitWords{std::move(heading), std::move(text)}) {}

WaitSign::WaitSign(WaitWords words) : m_words(std::move(words)) {}

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

void WaitSign::keepShowing(const WaitWords &words)
{
    m_words = words;
    ++m_step;
    if (!m_sign || !m_sign->isVisible())
        return show();
    m_sign->setFace({m_words, m_step});
    m_sign->repaint();
}

std::optional<WaitSign::Button> WaitSign::button() const
{
    if (m_sign && m_sign->isVisible())
        return m_sign->button();
    return m_loneSign ? m_loneSign->button() : std::nullopt;
}

void WaitSign::hide()
{
    if (m_sign)
        m_sign->hide();
    if (m_loneSign)
        m_loneSign->hide();
}

void WaitSign::showIn(QWidget &window)
{
    delete m_sign;
    m_sign = new Board(window);
    m_sign->setFace({m_words, m_step});
    m_sign->show();
    m_sign->raise();
    m_sign->repaint(); // first: the others take longer
    repaintWindows();
    QMetaObject::invokeMethod(m_sign, &QWidget::hide, Qt::QueuedConnection); // also in the loop of a box
}

void WaitSign::showAlone()
{
    if (!m_loneSign)
        m_loneSign = std::make_unique<LoneSign>();
    m_loneSign->setFace({m_words, m_step});
    if (!m_loneSign->isVisible()) {
        m_loneSign->show();
        QMetaObject::invokeMethod(m_loneSign.get(), &QWindow::hide, Qt::QueuedConnection);
    }
    m_loneSign->raise();
    m_loneSign->paintNow(); // each time: another window may have covered it
}

} // namespace harrowby::app
