// SPDX-License-Identifier: MIT
#pragma once

#include "ui/widgets/panel.h"

class QScrollArea;

namespace harrowby {

/// A panel whose page can be scrolled where the window leaves it too little room. A control that gets the focus comes
/// into view.
class FormPanel : public Panel
{
    Q_OBJECT

public:
    explicit FormPanel(QWidget *parent);

    /// What the panel shows; its layout is the form.
    [[nodiscard]] QWidget *page() const { return m_page; }
    /// From now on the page may be higher than the panel. The parts that scroll are made only when they are needed: a
    /// window that has the room opens without them.
    void makeScrollable();
    void setVisible(bool visible) override;
    /// This part of the page, its first, is seen whole. Where there is too little room for the whole page with the
    /// part at a comfortable height, the part takes the room, and what is below it shows how it begins.
    void keepInView(QWidget *part, int comfortable);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void addScroller();
    void showFocus(const QWidget *old, QWidget *now);
    void fitPage();
    void stretchPart();

    QWidget *m_page;
    QScrollArea *m_scroller = nullptr;
    bool m_mayScroll = false;
    bool m_wasShown = false;
    QWidget *m_part = nullptr;
    int m_comfortable = 0;
};

} // namespace harrowby
