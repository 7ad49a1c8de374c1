// SPDX-License-Identifier: MIT
#include "theme/colours.h"
#include "theme/style.h"

#include <QIcon>
#include <QIconEngine>
#include <QPainter>
#include <QPixmap>
#include <QSvgRenderer>

#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby {

namespace {

/// Paints a one-colour drawing in the text colour of the moment, so that it follows the palette and the scale.
class TintedDrawing : public QIconEngine
{
public:
    explicit TintedDrawing(QString path) : m_path(std::move(path)) {}

    void paint(QPainter *painter, const QRect &rect, QIcon::Mode mode, QIcon::State state) override
    {
        const qreal scale = painter->device()->devicePixelRatioF();
        painter->drawPixmap(rect, scaledPixmap(rect.size() * scale, mode, state, scale));
    }

    QPixmap pixmap(const QSize &size, QIcon::Mode mode, QIcon::State state) override
    {
        return scaledPixmap(size, mode, state, 1.0);
    }

    QPixmap scaledPixmap(const QSize &size, QIcon::Mode mode, QIcon::State, qreal) override
    {
        QPixmap result(size);
        result.fill(Qt::transparent);
        QPainter painter(&result);
        QSvgRenderer(m_path).render(&painter, QRectF(QPointF(), QSizeF(size)));
        painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
        painter.fillRect(result.rect(), mode == QIcon::Disabled ? Colours::current().muted : Colours::current().text);
        return result;
    }

    [[nodiscard]] QIconEngine *clone() const override { return new TintedDrawing(m_path); }

private:
    QString m_path;
};

} // namespace

QIcon tillIcon(const QString &name)
{
    return QIcon(new TintedDrawing(u":/harrowby/theme/icons/"_s + name + u".svg"_s));
}

} // namespace harrowby
