// SPDX-License-Identifier: MIT
#include "app/labels/label_preview.h"

#include <QPainter>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr QSize usualSize(300, 180);
constexpr QSize leastSize(200, 110);
constexpr int coarseDots = 203;

} // namespace

LabelPreview::LabelPreview(QWidget *parent) : QWidget(parent), m_paper(labelPaper({})), m_dotsPerInch(coarseDots)
{
    setObjectName(u"labelPicture"_s);
    setAccessibleName(u"Picture of the label"_s);
    setMinimumSize(leastSize);
}

void LabelPreview::show(const std::optional<Label> &label, const LabelPaper &paper, int dotsPerInch)
{
    m_label = label;
    m_paper = paper;
    m_dotsPerInch = dotsPerInch;
    QString words;
    if (m_label) {
        words = m_label->name + u", "_s + m_label->price + u", "_s +
                (m_label->symbol ? m_label->symbol->code : u"no code"_s);
    }
    setAccessibleDescription(words);
    update();
}

QSize LabelPreview::sizeHint() const
{
    return usualSize;
}

void LabelPreview::paintEvent(QPaintEvent * /*event*/)
{
    const LabelDrawing drawing(m_paper, m_dotsPerInch);
    const QSizeF dots = drawing.size();
    const double scale = std::min((width() - 2) / dots.width(), (height() - 2) / dots.height());
    const QSizeF shown = dots * scale;
    const QRectF card((width() - shown.width()) / 2, (height() - shown.height()) / 2, shown.width(), shown.height());
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(palette().color(QPalette::Mid));
    painter.setBrush(Qt::white); // paper is white in either look
    painter.drawRoundedRect(card, 4, 4);
    if (!m_label)
        return;
    painter.translate(card.topLeft());
    painter.scale(scale, scale);
    drawing.draw(painter, *m_label, {0, 0});
}

} // namespace harrowby::app
