// SPDX-License-Identifier: MIT
#include "app/banner/banner_view.h"

#include "spoken/spoken.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QStyle>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr int besides = 6; ///< left and right of the text
constexpr int above = 2;

QString toneName(BannerTone tone, bool isEmpty)
{
    if (isEmpty)
        return {};
    switch (tone) {
    case BannerTone::Large:
        return u"large"_s;
    case BannerTone::Refused:
        return u"refused"_s;
    case BannerTone::Plain:
        break;
    }
    return u"plain"_s;
}

bool fits(const QString &text, const QFontMetrics &metrics, const QSize &room)
{
    return metrics.boundingRect(QRect(QPoint(), room), Qt::TextWordWrap, text).height() <= room.height();
}

/// The text, or as much of it as fits.
QString fitted(const QString &text, const QFontMetrics &metrics, const QSize &room)
{
    if (room.isEmpty() || fits(text, metrics, room))
        return text;
    qsizetype fitting = 0;
    for (qsizetype step = text.size(); step > 0; step /= 2) {
        while (fitting + step < text.size() && fits(text.first(fitting + step) + u'\u2026', metrics, room))
            fitting += step;
    }
    return text.first(fitting).trimmed() + u'\u2026';
}

/// So that the style sheet looks at changed properties.
void repolish(QWidget &widget)
{
    widget.style()->unpolish(&widget);
    widget.style()->polish(&widget);
}

} // namespace

BannerView::BannerView(QWidget *parent) : QFrame(parent), m_label(new QLabel(this))
{
    setObjectName(u"hostBanner"_s);
    m_label->setObjectName(u"hostBannerText"_s);
    m_label->setTextFormat(Qt::PlainText);
    m_label->setWordWrap(true);
    m_label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Ignored); // the place says how large it is
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(besides, above, besides, above);
    row->addWidget(m_label);
}

void BannerView::showLine(const QString &text, BannerTone tone)
{
    m_text = tone == BannerTone::Refused && !text.isEmpty() ? u"\u26a0 "_s + text : text;
    setProperty("tone", toneName(tone, text.isEmpty()));
    repolish(*this);
    repolish(*m_label);
    m_label->setAccessibleName(m_text);
    m_label->setToolTip(m_text.isEmpty() ? QString() : m_text.toHtmlEscaped());
    reportOutcome(m_label, m_text); // the whole of it is said
    fit();
}

void BannerView::resizeEvent(QResizeEvent *event)
{
    QFrame::resizeEvent(event);
    fit();
}

void BannerView::changeEvent(QEvent *event)
{
    QFrame::changeEvent(event);
    const bool isDressed = event->type() == QEvent::StyleChange || event->type() == QEvent::FontChange;
    if (!isDressed || m_isFitting)
        return;
    m_isFitting = true; // fitting dresses the label anew
    fit();
    m_isFitting = false;
}

/// First in smaller letters, then cut.
void BannerView::fit()
{
    const QSize room = contentsRect().adjusted(besides, above, -besides, -above).size();
    setSmall(false);
    setSmall(!m_text.isEmpty() && !fits(m_text, m_label->fontMetrics(), room));
    const QString shown = fitted(m_text, m_label->fontMetrics(), room);
    if (m_label->text() != shown)
        m_label->setText(shown);
}

void BannerView::setSmall(bool isSmall)
{
    if (m_label->property("small").toBool() != isSmall) {
        m_label->setProperty("small", isSmall);
        repolish(*m_label);
    }
    m_label->ensurePolished();
}

} // namespace harrowby::app
