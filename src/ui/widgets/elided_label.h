// SPDX-License-Identifier: MIT
#pragma once

#include <QLabel>

namespace harrowby {

/// One line of data. text() is the whole text, always plain; what does not fit is painted elided, with the whole in
/// the tool tip.
class ElidedLabel : public QLabel
{
    Q_OBJECT

public:
    explicit ElidedLabel(QWidget *parent = nullptr);

    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

    /// Where the text may be painted.
    [[nodiscard]] virtual QRect textArea() const;
    [[nodiscard]] virtual QColor textColour() const;

private:
    [[nodiscard]] bool isTooLong() const;
};

/// The sum at the foot of the cart: what stands before the colon small, the amount as large as fits, up to the
/// label's own font.
class TotalLabel : public ElidedLabel
{
    Q_OBJECT

public:
    using ElidedLabel::ElidedLabel;

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
};

/// A stock level on a coloured ground; a low one has a mark beside its colour.
class LevelLabel : public ElidedLabel
{
    Q_OBJECT
    Q_PROPERTY(bool low READ isLow WRITE setLow)

public:
    using ElidedLabel::ElidedLabel;

    [[nodiscard]] bool isLow() const { return m_low; }
    void setLow(bool low);

protected:
    void paintEvent(QPaintEvent *event) override;
    [[nodiscard]] QRect textArea() const override;
    [[nodiscard]] QColor textColour() const override;

private:
    bool m_low = false;
};

} // namespace harrowby
