// SPDX-License-Identifier: MIT
#include "app/exchange/scrolling.h"

#include <QScrollArea>

namespace harrowby::app {

QScrollArea *makeScrolling(QWidget *inner, QWidget *parent)
{
    auto *area = new QScrollArea(parent);
    area->setWidgetResizable(true);
    area->setFrameShape(QFrame::NoFrame);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setFocusPolicy(Qt::NoFocus);
    area->setWidget(inner);
    area->viewport()->setAutoFillBackground(false); // the window's ground shows
    inner->setAutoFillBackground(false);
    return area;
}

} // namespace harrowby::app
