// SPDX-License-Identifier: MIT
#pragma once

#include <QScrollArea>

class QHBoxLayout;

namespace harrowby {

/// Buttons side by side, flush right. Where they have too little room, the row is scrolled by finger, and to whichever
/// gets the focus.
class ButtonStrip : public QScrollArea
{
    Q_OBJECT

public:
    explicit ButtonStrip(QWidget *parent);

    /// The strip owns it.
    void add(QWidget *button);
    /// The one that was added last.
    [[nodiscard]] QWidget *last() const { return m_last; }

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

Q_SIGNALS:
    /// Its buttons want another width.
    void wishChanged();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void showFocus(const QWidget *old, QWidget *now);

    QHBoxLayout *m_row;
    QWidget *m_last = nullptr;
};

} // namespace harrowby
