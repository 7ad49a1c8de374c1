// SPDX-License-Identifier: MIT
#include "ui/widgets/quick_sale_button.h"

#include "theme/colours.h"
#include "ui/widgets/plain_tool_tip.h"
#include "ui/widgets/quick_sale_reader.h"

#include <QFontInfo>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QPainterPath>
#include <QPixmapCache>
#include <QTextLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace harrowby {

namespace {

constexpr int cardRadius = 12;
constexpr int padding = 12;
constexpr int paddingShare = 18; ///< of a narrow card, left and right of its texts
constexpr int mostNameLines = 3;
constexpr int shownName = 400;        ///< characters that are laid out
constexpr double smallestName = 0.80; ///< of the window's font
const QString blank = u"(empty)"_s;
constexpr QChar cutOff = u'\u2026'; ///< more of the text follows

QRectF cardWithin(const QRect &whole)
{
    return QRectF(whole).adjusted(1.5, 1.5, -1.5, -1.5);
}

/// The pixels that suit a card of this height: a part of it, between bounds that follow the window's font.
double fitting(double part, double smallest, double largest)
{
    return std::clamp(part, smallest, largest);
}

QPixmap drawnCard(const QRect &whole, double ratio, const QPen &edge, const QColor &ground)
{
    QPixmap card(whole.size() * ratio);
    card.setDevicePixelRatio(ratio);
    card.fill(Qt::transparent);
    QPainter painter(&card);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(edge);
    painter.setBrush(ground);
    painter.drawRoundedRect(cardWithin(whole), cardRadius, cardRadius);
    painter.end();
    return card;
}

/// Nine cards look alike again and again, and their round edges take as long as their texts.
QPixmap keptCard(const QRect &whole, double ratio, const QPen &edge, const QColor &ground)
{
    const QString key = u"quick sale %1 %2 %3 %4 %5 %6 %7"_s.arg(
        QString::number(whole.width()), QString::number(whole.height()), QString::number(ratio),
        QString::number(edge.color().rgba()), QString::number(edge.widthF()),
        QString::number(static_cast<int>(edge.style())), QString::number(ground.rgba()));
    QPixmap card;
    if (!QPixmapCache::find(key, &card)) {
        card = drawnCard(whole, ratio, edge, ground);
        QPixmapCache::insert(key, card);
    }
    return card;
}

/// A text that goes on after its first line: cut off after a word if there is room for the ellipsis.
QString elided(const QString &text, int lineLength, const QFontMetrics &metrics, int width)
{
    const QString whole = text.left(lineLength).trimmed() + cutOff;
    return metrics.horizontalAdvance(whole) <= width ? whole : metrics.elidedText(text, Qt::ElideRight, width);
}

} // namespace

struct QuickSaleButton::Face
{
    QString id;
    QString name;
    QString price;
    double idPixels;
    double namePixels;
    double pricePixels;
    int bandHeight; ///< of the band that says that the item is out of stock
};

QuickSaleButton::QuickSaleButton(QWidget *parent) : QAbstractButton(parent)
{
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover);
    installQuickSaleReader();
    setText(blank);
}

void QuickSaleButton::setText(const QString &caption)
{
    if (caption == text())
        return;
    QAbstractButton::setText(caption);
    setShortcut({});
    describe();
}

void QuickSaleButton::setOutOfStock(bool outOfStock)
{
    if (outOfStock == m_outOfStock)
        return;
    m_outOfStock = outOfStock;
    describe();
    update();
}

QSize QuickSaleButton::sizeHint() const
{
    return {200, 150};
}

QSize QuickSaleButton::minimumSizeHint() const
{
    return {150, 104};
}

bool QuickSaleButton::event(QEvent *event)
{
    if (event->type() != QEvent::ToolTip)
        return QAbstractButton::event(event);
    showPlainToolTip(static_cast<QHelpEvent *>(event)->globalPos(), toolTip(), this);
    return true;
}

/// A desktop may have Enter press its buttons. Here it would sell with the second Enter of a login, and with the one
/// that a code reader sends.
void QuickSaleButton::keyPressEvent(QKeyEvent *event)
{
    if (event->key() != Qt::Key_Return && event->key() != Qt::Key_Enter)
        QAbstractButton::keyPressEvent(event);
}

void QuickSaleButton::paintEvent(QPaintEvent *)
{
    const Colours &colours = Colours::current();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    paintCard(painter, colours);
    if (isBlank()) {
        paintBlank(painter, rect(), colours);
        return;
    }

    const Face face = this->face();
    if (m_outOfStock)
        paintBand(painter, cardWithin(rect()), face, colours);
    const QRect all = inside(face);
    painter.setPen(colours.muted);
    painter.setFont(sized(face.idPixels, false));
    painter.drawText(all, Qt::AlignLeft | Qt::AlignTop | Qt::TextSingleLine,
                     painter.fontMetrics().elidedText(face.id, Qt::ElideRight, all.width()));
    painter.setFont(sized(face.pricePixels, true));
    painter.setPen(m_outOfStock ? colours.text : colours.price);
    painter.drawText(priceArea(face), Qt::AlignRight | Qt::AlignBottom | Qt::TextSingleLine,
                     painter.fontMetrics().elidedText(face.price, Qt::ElideRight, all.width()));
    painter.setPen(m_outOfStock ? colours.muted : colours.text);
    paintName(painter, face);
}

QRect QuickSaleButton::inside(const Face &face) const
{
    const int side = std::min(padding, width() / paddingShare);
    QRect inside = rect().adjusted(side, padding - 2, -side, -padding + 2);
    if (m_outOfStock)
        inside.setTop(face.bandHeight + 4);
    return inside;
}

QRect QuickSaleButton::priceArea(const Face &face) const
{
    const QRect all = inside(face);
    return all.adjusted(0, all.height() - static_cast<int>(face.pricePixels * 1.25), 0, 0);
}

QRect QuickSaleButton::nameArea(const Face &face) const
{
    const QRect all = inside(face);
    const int top = all.top() + QFontMetrics(sized(face.idPixels, false)).height();
    return {all.left(), top, all.width(), priceArea(face).top() - top};
}

QuickSaleButton::Face QuickSaleButton::face() const
{
    const QStringList lines = text().split(u"\r\n"_s);
    const double unit = QFontInfo(font()).pixelSize();
    const double height = this->height();
    Face face;
    face.id = lines.first();
    face.price = lines.size() > 1 ? lines.last() : QString();
    face.name = lines.mid(1, std::max<qsizetype>(0, lines.size() - 2)).join(u' ').simplified();
    face.idPixels = fitting(height * 0.085, unit * 0.80, unit * 1.20);
    face.namePixels = fitting(height * 0.115, unit * 1.05, unit * 2.20);
    face.pricePixels = fitting(height * 0.135, unit * 1.25, unit * 2.60);
    face.bandHeight = static_cast<int>(unit * 1.75);
    return face;
}

bool QuickSaleButton::isBlank() const
{
    return text() == blank;
}

QFont QuickSaleButton::sized(double pixels, bool bold) const
{
    QFont result = font();
    result.setPixelSize(static_cast<int>(pixels));
    result.setBold(bold);
    return result;
}

void QuickSaleButton::paintCard(QPainter &painter, const Colours &colours) const
{
    const bool hovered = underMouse() && isEnabled();
    QPen edge(hovered ? colours.accent : m_outOfStock ? colours.danger : colours.fieldBorder, 1.0);
    QColor ground = isBlank() || m_outOfStock ? colours.background : colours.tile;
    if (isDown())
        ground = colours.selection;
    if (isBlank())
        edge.setStyle(Qt::DashLine);
    if (hasFocus())
        edge = QPen(colours.accent, 3.0);
    painter.drawPixmap(0, 0, keptCard(rect(), devicePixelRatioF(), edge, ground));
}

void QuickSaleButton::paintBlank(QPainter &painter, const QRect &inside, const Colours &colours) const
{
    painter.setPen(colours.muted);
    painter.setFont(sized(QFontInfo(font()).pixelSize(), false));
    painter.drawText(inside, Qt::AlignCenter, blank);
}

void QuickSaleButton::paintBand(QPainter &painter, const QRectF &card, const Face &face, const Colours &colours) const
{
    QPainterPath shape;
    shape.addRoundedRect(card, cardRadius, cardRadius);
    painter.save();
    painter.setClipPath(shape);
    const QRectF band(card.left(), card.top(), card.width(), face.bandHeight);
    painter.fillRect(band, colours.danger);
    painter.setPen(colours.onDanger);
    painter.setFont(sized(face.idPixels, true));
    painter.drawText(band, Qt::AlignCenter, u"OUT OF STOCK"_s);
    painter.restore();
}

/// As large as the card's height allows, but so small that no word has to be broken; only a word that is too long for
/// the smallest is.
QFont QuickSaleButton::nameFont(const Face &face, int width) const
{
    const double smallest = QFontInfo(font()).pixelSize() * smallestName;
    double pixels = face.namePixels;
    const QStringList words = face.name.left(shownName).split(u' ');
    const auto fits = [&] {
        const QFontMetrics metrics(sized(pixels, true));
        return std::ranges::all_of(words, [&](const QString &word) {
            return metrics.horizontalAdvance(word + cutOff) <= width; // the last one may be followed by the ellipsis
        });
    };
    while (pixels > smallest && !fits())
        pixels = std::max(smallest, pixels - 1);
    return sized(pixels, true);
}

QStringList QuickSaleButton::nameLines() const
{
    const Face face = this->face();
    return isBlank() ? QStringList() : nameLines(face, nameFont(face, nameArea(face).width()));
}

/// As many lines as there is room for; the last one is elided.
QStringList QuickSaleButton::nameLines(const Face &face, const QFont &font) const
{
    const QRect area = nameArea(face);
    const QFontMetrics metrics(font);
    const int lines = std::clamp(area.height() / metrics.height(), 1, mostNameLines);
    QTextLayout layout(face.name.left(shownName), font);
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    layout.beginLayout();
    QStringList shown;
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(area.width());
        if (shown.size() + 1 == lines && line.textStart() + line.textLength() < face.name.size()) {
            shown += elided(face.name.mid(line.textStart()), line.textLength(), metrics, area.width());
            break;
        }
        shown += face.name.mid(line.textStart(), line.textLength()).trimmed();
    }
    layout.endLayout();
    return shown;
}

void QuickSaleButton::paintName(QPainter &painter, const Face &face) const
{
    const QRect area = nameArea(face);
    painter.setFont(nameFont(face, area.width()));
    const int lineHeight = painter.fontMetrics().height();
    const QStringList shown = nameLines(face, painter.font());
    int top = area.top() + std::max<int>(0, (area.height() - static_cast<int>(shown.size()) * lineHeight) / 2);
    for (const QString &line : shown) {
        painter.drawText(QRect(area.left(), top, area.width(), lineHeight), Qt::AlignLeft | Qt::AlignVCenter, line);
        top += lineHeight;
    }
}

QString QuickSaleButton::spokenName() const
{
    const Face face = this->face();
    return isBlank() || face.price.isEmpty() ? face.id : face.name + u", "_s + face.price;
}

/// The name follows the caption by itself: a name that was set as well would be told twice.
void QuickSaleButton::describe()
{
    const QString id = face().id;
    setAccessibleDescription(isBlank()      ? QString()
                             : m_outOfStock ? u"Stock ID %1, out of stock"_s.arg(id)
                                            : u"Stock ID %1"_s.arg(id));
}

} // namespace harrowby
