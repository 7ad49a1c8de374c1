// SPDX-License-Identifier: MIT
#pragma once

#include "app/labels/label_paper.h"
#include "app/labels/symbol.h"

#include <QFont>
#include <QPoint>
#include <QRect>
#include <QSize>
#include <QString>

#include <optional>

class QPainter;

namespace harrowby::app {

/// What stands on a label.
struct Label
{
    QString name;
    QString price;
    std::optional<Symbol> symbol; ///< none: name and price alone
};

/// Sets labels for one paper and one fineness of printing. Lengths are whole dots of the printer, so that bars are as
/// wide as they are meant. Needs a QGuiApplication, for its fonts; may be used on any thread.
class LabelDrawing
{
public:
    LabelDrawing(const LabelPaper &paper, int dotsPerInch);

    [[nodiscard]] QSize size() const { return m_size; }
    [[nodiscard]] int dots(double mm) const;

    /// Whether the bars fit, wide enough for a reader and with blank paper beside them.
    [[nodiscard]] bool takesSymbol(const Symbol &symbol) const { return moduleDots(symbol) > 0; }
    /// Whether the whole price fits; it is never cut.
    [[nodiscard]] bool takesPrice(const Label &label) const;

    /// Draws a label whose parts fit, dark on whatever there is, within size() at this corner.
    void draw(QPainter &painter, const Label &label, QPoint corner) const;

private:
    [[nodiscard]] int moduleDots(const Symbol &symbol) const;
    [[nodiscard]] QFont font(double mm, bool bold) const;
    /// As large as the price fits; nothing when it is too long.
    [[nodiscard]] std::optional<QFont> priceFont(const Label &label) const;
    [[nodiscard]] QRect nameRoom(const Label &label) const;
    [[nodiscard]] QRect priceRoom(const Label &label) const;
    void drawName(QPainter &painter, const QString &name, const QRect &room) const;
    void drawSymbol(QPainter &painter, const Symbol &symbol, int top, int bottom) const;

    int m_dotsPerInch;
    QSize m_size;
    QRect m_inner;  ///< without the margins
    double m_scale; ///< of the letters
};

} // namespace harrowby::app
