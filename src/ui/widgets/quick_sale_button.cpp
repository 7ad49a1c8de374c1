// SPDX-License-Identifier: MIT
#include "ui/widgets/quick_sale_button.h"

#include "ui/style/colours.h"
#include "ui/widgets/plain_tool_tip.h"
#include "ui/widgets/quick_sale_reader.h"

#include <QFontInfo>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QPainterPath>
#include <QTextLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace harrowby {

namespace {

constexpr int kRadius = 12;
constexpr int kPadding = 12;
constexpr int kNameLines = 3;
const QString kBlank = u"(empty)"_s;

/// The pixels that suit a card of this height: a part of it, between bounds that follow the window's font.
double fitting(double part, double smallest, double largest)
{
    return std::clamp(part, smallest, largest);
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
    int bandHeight; ///< of the sign that the item is out of stock
};

QuickSaleButton::QuickSaleButton(QWidget *parent) : QAbstractButton(parent)
{
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover);
    installQuickSaleReader();
    setText(kBlank);
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
    const QRectF card = QRectF(rect()).adjusted(1.5, 1.5, -1.5, -1.5);
    paintCard(painter, card, colours);
    QRect inside = rect().adjusted(kPadding, kPadding - 2, -kPadding, -kPadding + 2);
    if (isBlank()) {
        paintBlank(painter, inside, colours);
        return;
    }

    const Face face = this->face();
    if (m_outOfStock) {
        paintBand(painter, card, face, colours);
        inside.setTop(face.bandHeight + 4);
    }
    painter.setPen(colours.muted);
    painter.setFont(sized(face.idPixels, false));
    const QFontMetrics small = painter.fontMetrics();
    painter.drawText(inside, Qt::AlignLeft | Qt::AlignTop | Qt::TextSingleLine,
                     small.elidedText(face.id, Qt::ElideRight, inside.width()));
    const QRect priceArea = inside.adjusted(0, inside.height() - int(face.pricePixels * 1.25), 0, 0);
    painter.setFont(sized(face.pricePixels, true));
    painter.setPen(m_outOfStock ? colours.text : colours.price);
    painter.drawText(priceArea, Qt::AlignRight | Qt::AlignBottom | Qt::TextSingleLine,
                     painter.fontMetrics().elidedText(face.price, Qt::ElideRight, inside.width()));
    painter.setPen(m_outOfStock ? colours.muted : colours.text);
    paintName(painter,
              QRect(inside.left(), inside.top() + small.height(), inside.width(),
                    priceArea.top() - inside.top() - small.height()),
              face);
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
    face.bandHeight = int(unit * 1.75);
    return face;
}

bool QuickSaleButton::isBlank() const
{
    return text() == kBlank;
}

QFont QuickSaleButton::sized(double pixels, bool bold) const
{
    QFont result = font();
    result.setPixelSize(int(pixels));
    result.setBold(bold);
    return result;
}

void QuickSaleButton::paintCard(QPainter &painter, const QRectF &card, const Colours &colours) const
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
    painter.setPen(edge);
    painter.setBrush(ground);
    painter.drawRoundedRect(card, kRadius, kRadius);
}

void QuickSaleButton::paintBlank(QPainter &painter, const QRect &inside, const Colours &colours) const
{
    painter.setPen(colours.muted);
    painter.setFont(sized(QFontInfo(font()).pixelSize(), false));
    painter.drawText(inside, Qt::AlignCenter, kBlank);
}

void QuickSaleButton::paintBand(QPainter &painter, const QRectF &card, const Face &face, const Colours &colours) const
{
    QPainterPath shape;
    shape.addRoundedRect(card, kRadius, kRadius);
    painter.save();
    painter.setClipPath(shape);
    const QRectF band(card.left(), card.top(), card.width(), face.bandHeight);
    painter.fillRect(band, colours.danger);
    painter.setPen(colours.onDanger);
    painter.setFont(sized(face.idPixels, true));
    painter.drawText(band, Qt::AlignCenter, tr("OUT OF STOCK"));
    painter.restore();
}

/// The name, on as many lines as there is room for; the last line is elided.
void QuickSaleButton::paintName(QPainter &painter, const QRect &area, const Face &face) const
{
    painter.setFont(sized(face.namePixels, true));
    const QFontMetrics metrics = painter.fontMetrics();
    const int lines = std::clamp(area.height() / metrics.height(), 1, kNameLines);
    QTextLayout layout(face.name.left(400), painter.font());
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    layout.beginLayout();
    QStringList shown;
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(area.width());
        if (shown.size() + 1 == lines) {
            shown += metrics.elidedText(face.name.mid(line.textStart()), Qt::ElideRight, area.width());
            break;
        }
        shown += face.name.mid(line.textStart(), line.textLength()).trimmed();
    }
    layout.endLayout();
    int top = area.top() + std::max<int>(0, (area.height() - int(shown.size()) * metrics.height()) / 2);
    for (const QString &line : std::as_const(shown)) {
        painter.drawText(QRect(area.left(), top, area.width(), metrics.height()), Qt::AlignLeft | Qt::AlignVCenter,
                         line);
        top += metrics.height();
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
                             : m_outOfStock ? tr("Stock ID %1, out of stock").arg(id)
                                            : tr("Stock ID %1").arg(id));
}

} // namespace harrowby
