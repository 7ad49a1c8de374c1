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
    /// Lets the page be higher than the panel. The scroll area is created only when it is needed, as it costs time when
    /// a window opens.
    void makeScrollable();
    void setVisible(bool visible) override;
    /// Keeps this part, the first of the page, wholly in view. Where the page does not fit with the part at
    /// `comfortable` height, the part gets the room, and only the beginning of what is below it shows.
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
