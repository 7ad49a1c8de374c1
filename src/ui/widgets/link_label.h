// SPDX-License-Identifier: MIT
#pragma once

#include "ui/widgets/elided_label.h"

namespace harrowby {

/// A figure that is pressed like a link: by the mouse, by Enter or the space bar, and by a screen reader, to which it
/// is a link with a press action.
class LinkLabel : public ElidedLabel
{
    Q_OBJECT

public:
    explicit LinkLabel(QWidget *parent = nullptr);

Q_SIGNALS:
    void clicked();

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
};

} // namespace harrowby
