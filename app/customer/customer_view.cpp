// SPDX-License-Identifier: MIT
#include "app/customer/customer_view.h"

#include "app/customer/fitted_text.h"
#include "basic/numbers.h"
#include "theme/colours.h"

#include <QEvent>
#include <QPainter>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

// Heights of texts and distances, in hundredths of the window's shorter side.
constexpr double titleSize = 6.5;
constexpr double lineSize = 6;
constexpr double narrowLineSize = 5; ///< where the window is upright
constexpr double captionSize = 6;
constexpr double lastSize = 7.5;
constexpr double totalSize = 20;
constexpr double thanksSize = 13;
constexpr double changeSize = 30;
constexpr double leastSize = 4; ///< what does not fit even so is cut
constexpr double margin = 3;
constexpr double tileHeight = 36; ///< of the last item, and of the total

QString wordsAbove(std::size_t lines)
{
    return u"\u2191 %1 more"_s.arg(lines);
}

QString wordsBelow(std::size_t lines)
{
    return u"\u2193 %1 more"_s.arg(lines);
}

QString times(const CustomerLine &line)
{
    return plainText(line.quantity) + u" \u00d7"_s;
}

/// Paints one page.
class Painting
{
public:
    Painting(QPainter &painter, const CustomerPage &page, const QRect &window) :
        m_painter(painter), m_page(page), m_window(window), m_unit(std::min(window.width(), window.height()) / 100.0)
    {
    }

    void paint()
    {
        m_painter.fillRect(m_window, m_colours.background);
        switch (m_page.kind) {
        case CustomerPage::Kind::Welcome:
            return paintWelcome();
        case CustomerPage::Kind::Cart:
            return paintCart();
        case CustomerPage::Kind::Thanks:
            return paintThanks();
        }
    }

private:
    [[nodiscard]] int length(double hundredths) const { return std::max(1, static_cast<int>(hundredths * m_unit)); }

    void setFont(double size, QFont::Weight weight = QFont::Normal)
    {
        QFont font = m_painter.font();
        font.setPixelSize(length(size));
        font.setWeight(weight);
        m_painter.setFont(font);
    }

    /// On one line, in smaller letters where it has to be.
    void drawFitted(const QRect &room, double size, Qt::Alignment alignment, const QString &text)
    {
        m_painter.setFont(fittedFont(m_painter.font(), text, room.size(), length(size), length(leastSize)));
        drawLine(m_painter, room, alignment, text);
    }

    /// What is left of the window below the band with the shop's title.
    QRect paintTitle()
    {
        if (m_page.title.isEmpty())
            return m_window;
        const int height = length(titleSize * 1.9);
        const QRect band(m_window.left(), m_window.top(), m_window.width(), height);
        m_painter.fillRect(band, m_colours.accent);
        m_painter.setPen(m_colours.onAccent);
        setFont(titleSize, QFont::Bold);
        const int side = length(margin);
        drawFitted(band.adjusted(side, 0, -side, 0), titleSize, Qt::AlignHCenter | Qt::AlignVCenter, m_page.title);
        return m_window.adjusted(0, height, 0, 0);
    }

    void paintWelcome()
    {
        const int side = length(margin * 2);
        QRect room = m_window.adjusted(side, side, -side, -side);
        m_painter.setPen(m_colours.accentText);
        setFont(thanksSize, QFont::Bold);
        if (!m_page.title.isEmpty()) {
            const QRect upper(room.left(), room.top(), room.width(), room.height() * 2 / 3);
            drawWrapped(m_painter, upper, Qt::AlignHCenter | Qt::AlignVCenter, m_page.title);
            room.setTop(upper.bottom());
        }
        m_painter.setPen(m_colours.text);
        setFont(lastSize);
        drawFitted(room, lastSize, Qt::AlignHCenter | Qt::AlignVCenter, u"Welcome"_s);
    }

    /// The cart's lines above, the last item and the total below, side by side where the window is wide.
    void paintCart()
    {
        const int side = length(margin);
        const QRect room = paintTitle().adjusted(side, side, -side, -side);
        const int height = length(tileHeight);
        const bool isWide = room.width() > room.height();
        const QRect total =
            isWide ? QRect(room.right() - room.width() * 9 / 20, room.bottom() - height, room.width() * 9 / 20, height)
                   : QRect(room.left(), room.bottom() - height, room.width(), height);
        const QRect last = isWide ? QRect(room.left(), total.top(), total.left() - room.left() - side, height)
                                  : total.translated(0, -height - side);
        paintLines(QRect(room.topLeft(), QPoint(room.right(), last.top() - side)));
        paintLast(last);
        paintTotal(total);
    }

    /// A part of the page that is set off; the room within.
    QRect paintTile(const QRect &tile, const QColor &colour)
    {
        m_painter.setPen(Qt::NoPen);
        m_painter.setBrush(colour);
        m_painter.drawRoundedRect(tile, length(1.5), length(1.5));
        const int side = length(margin * 2 / 3);
        return tile.adjusted(side, side, -side, -side);
    }

    void paintLast(const QRect &tile)
    {
        const QRect room = paintTile(tile, m_colours.card);
        if (!m_page.last)
            return;
        const CustomerLine &line = m_page.lines[*m_page.last];
        const int figures = length(lastSize * 1.25);
        m_painter.setPen(m_colours.text);
        setFont(lastSize, QFont::Bold);
        drawWrapped(m_painter, room.adjusted(0, 0, 0, -figures), Qt::AlignLeft | Qt::AlignVCenter, line.name);
        const QRect below(room.left(), room.bottom() - figures + 1, room.width(), figures);
        setFont(lastSize);
        if (line.quantity != 1)
            drawFitted(below.adjusted(0, 0, -room.width() / 2, 0), lastSize, Qt::AlignLeft | Qt::AlignVCenter,
                       times(line));
        m_painter.setPen(m_colours.price);
        setFont(lastSize, QFont::Bold);
        drawFitted(below.adjusted(room.width() / 3, 0, 0, 0), lastSize, Qt::AlignRight | Qt::AlignVCenter,
                   formatMoney(line.cost));
    }

    void paintTotal(const QRect &tile)
    {
        const QRect room = paintTile(tile, m_colours.accent);
        m_painter.setPen(m_colours.onAccent);
        setFont(captionSize);
        const int caption = length(captionSize * 1.4);
        drawLine(m_painter, QRect(room.left(), room.top(), room.width(), caption), Qt::AlignLeft | Qt::AlignVCenter,
                 u"Total"_s);
        setFont(totalSize, QFont::Bold);
        drawFitted(room.adjusted(0, caption, 0, 0), totalSize, Qt::AlignRight | Qt::AlignVCenter,
                   customerAmount(m_page, m_page.total));
    }

    void paintLines(const QRect &room)
    {
        setFont(m_window.width() > m_window.height() ? lineSize : narrowLineSize);
        const int height = m_painter.fontMetrics().height();
        const auto rows = static_cast<std::size_t>(std::max(1, room.height() / height));
        const LinesInSight sight =
            linesInSight(m_page.lines.size(), m_page.last.value_or(m_page.lines.size() - 1), rows);
        const std::size_t end = sight.first + sight.count;
        const LineColumns columns = columnsOf(sight);
        QRect row(room.left(), room.top(), room.width(), height);
        if (sight.first > 0)
            paintWords(row, wordsAbove(sight.first));
        for (std::size_t line = sight.first; line < end; ++line)
            paintLine(row, columns, m_page.lines[line], line == m_page.last);
        if (end < m_page.lines.size())
            paintWords(row, wordsBelow(m_page.lines.size() - end));
    }

    /// In the row, which moves on to the next one.
    void paintWords(QRect &row, const QString &words)
    {
        m_painter.setPen(m_colours.muted);
        drawLine(m_painter, row, Qt::AlignHCenter | Qt::AlignVCenter, words);
        row.translate(0, row.height());
    }

    struct LineColumns
    {
        int quantity = 0; ///< widths
        int cost = 0;
    };

    [[nodiscard]] LineColumns columnsOf(const LinesInSight &sight) const
    {
        const QFontMetrics metrics = m_painter.fontMetrics();
        LineColumns columns;
        const auto wider = [&metrics](int width, const QString &text) {
            return std::max(width, metrics.horizontalAdvance(text));
        };
        for (std::size_t line = sight.first; line < sight.first + sight.count; ++line) {
            columns.quantity = wider(columns.quantity, times(m_page.lines[line]));
            columns.cost = wider(columns.cost, formatMoney(m_page.lines[line].cost));
        }
        return columns;
    }

    void paintLine(QRect &row, const LineColumns &columns, const CustomerLine &line, bool isLast)
    {
        const int gap = length(1.5);
        if (isLast)
            m_painter.fillRect(row, m_colours.selection);
        const QRect room = row.adjusted(gap, 0, -gap, 0);
        const QRect name = room.adjusted(columns.quantity + gap, 0, -columns.cost - gap, 0);
        m_painter.setPen(m_colours.text);
        drawLine(m_painter, QRect(room.left(), room.top(), columns.quantity, room.height()),
                 Qt::AlignRight | Qt::AlignVCenter, times(line));
        drawLine(m_painter, name, Qt::AlignLeft | Qt::AlignVCenter, line.name);
        drawLine(m_painter, QRect(name.right() + gap, room.top(), columns.cost, room.height()),
                 Qt::AlignRight | Qt::AlignVCenter, formatMoney(line.cost));
        row.translate(0, row.height());
    }

    void paintThanks()
    {
        const int side = length(margin);
        const QRect room = paintTitle().adjusted(side, side, -side, -side);
        const Qt::Alignment middle = Qt::AlignHCenter | Qt::AlignVCenter;
        const bool hasChange = m_page.change > 0;
        const int sum = length(lastSize * 1.5);
        const int thanks = length(thanksSize * 1.5);
        QRect rest = room;
        if (hasChange)
            rest.setTop(paintChange(room.adjusted(0, 0, 0, -sum - thanks)));
        m_painter.setPen(m_colours.accentText);
        setFont(thanksSize, QFont::Bold);
        drawFitted(QRect(rest.left(), rest.bottom() - thanks + 1, rest.width(), thanks)
                       .translated(0, hasChange ? 0 : -(rest.height() - thanks) / 2),
                   thanksSize, middle, u"Thank you!"_s);
        m_painter.setPen(m_colours.text);
        setFont(lastSize);
        drawFitted(QRect(rest.left(), rest.top(), rest.width(), sum), lastSize, middle,
                   u"Total "_s + customerAmount(m_page, m_page.total));
    }

    /// Where the rest of the page begins.
    int paintChange(const QRect &tile)
    {
        const QRect room = paintTile(tile, m_colours.accent);
        const int caption = length(captionSize * 1.6);
        m_painter.setPen(m_colours.onAccent);
        setFont(captionSize * 1.2);
        drawLine(m_painter, QRect(room.left(), room.top(), room.width(), caption), Qt::AlignHCenter | Qt::AlignVCenter,
                 u"Change"_s);
        setFont(changeSize, QFont::Bold);
        drawFitted(room.adjusted(0, caption, 0, 0), changeSize, Qt::AlignHCenter | Qt::AlignVCenter,
                   customerAmount(m_page, m_page.change));
        return tile.bottom() + 1;
    }

    QPainter &m_painter;
    const CustomerPage &m_page;
    QRect m_window;
    double m_unit; ///< a hundredth of the window's shorter side
    const Colours &m_colours = Colours::current();
};

} // namespace

CustomerView::CustomerView() : QWidget(nullptr, Qt::Window | Qt::FramelessWindowHint | Qt::WindowDoesNotAcceptFocus)
{
    setObjectName(u"customerScreen"_s);
    setWindowTitle(u"Customer"_s);
    setAccessibleName(u"The customer's screen"_s);
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_QuitOnClose, false);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setFocusPolicy(Qt::NoFocus);
    setCursor(Qt::BlankCursor);
}

void CustomerView::setPage(const CustomerPage &page)
{
    if (page == m_page)
        return;
    m_page = page;
    update();
}

void CustomerView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    Painting(painter, m_page, rect()).paint();
}

void CustomerView::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange)
        update();
}

} // namespace harrowby::app
