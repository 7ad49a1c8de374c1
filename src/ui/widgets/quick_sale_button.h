// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractButton>

namespace harrowby {

struct Colours;

/// One quick-sale button. text() is its caption: ID, name and unit price on three lines (CR LF between them), or
/// "(empty)"; each line is painted in its own way. The caption is data: no accelerator, no markup, and the tool tip
/// is shown as plain text. The space bar presses it, and Enter never.
class QuickSaleButton : public QAbstractButton
{
    Q_OBJECT
    Q_PROPERTY(bool outOfStock READ isOutOfStock WRITE setOutOfStock)

public:
    explicit QuickSaleButton(QWidget *parent = nullptr);

    /// Hides QAbstractButton::setText(), which would turn an "&" of the data into a shortcut.
    void setText(const QString &caption);
    [[nodiscard]] bool isOutOfStock() const { return m_outOfStock; }
    void setOutOfStock(bool outOfStock);
    /// What a screen reader calls it: name and price. The ID and the state come with the description.
    [[nodiscard]] QString spokenName() const;

    /// The name as it is painted, line by line.
    [[nodiscard]] QStringList nameLines() const;

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    bool event(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    /// The caption's lines and what is painted how large.
    struct Face;

    [[nodiscard]] Face face() const;
    /// Where a caption of three lines is painted.
    [[nodiscard]] QRect inside(const Face &face) const;
    [[nodiscard]] QRect priceArea(const Face &face) const;
    [[nodiscard]] QRect nameArea(const Face &face) const;
    [[nodiscard]] QFont nameFont(const Face &face, int width) const;
    [[nodiscard]] QStringList nameLines(const Face &face, const QFont &font) const;
    [[nodiscard]] bool isBlank() const;
    [[nodiscard]] QFont sized(double pixels, bool bold) const;
    void paintCard(QPainter &painter, const Colours &colours) const;
    void paintBlank(QPainter &painter, const QRect &inside, const Colours &colours) const;
    void paintBand(QPainter &painter, const QRectF &card, const Face &face, const Colours &colours) const;
    void paintName(QPainter &painter, const Face &face) const;
    void describe();

    bool m_outOfStock = false;
};

} // namespace harrowby
