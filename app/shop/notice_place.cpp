// SPDX-License-Identifier: MIT
#include "app/shop/notice_place.h"

#include <harrowby/window_marks.h>

#include <QApplication>
#include <QWidget>

#include <algorithm>

namespace harrowby::app {

namespace {

constexpr int gap = 8;
constexpr int step = 8;

bool isFree(const QRect &place, const QList<QRect> &keepFree)
{
    return std::none_of(keepFree.cbegin(), keepFree.cend(),
                        [&](const QRect &taken) { return taken.intersects(place); });
}

QList<QPoint> placesBeside(const QSize &notice, const QRect &window)
{
    const int lowest = window.bottom() - notice.height() + 1;
    return {{window.left(), window.bottom() + gap},
            {window.left() - gap - notice.width(), lowest},
            {window.right() + gap, lowest},
            {window.left(), window.top() - gap - notice.height()}};
}

QPoint placeInside(const QSize &notice, const QRect &area, const QList<QRect> &keepFree)
{
    const QPoint corner(area.left() + gap, area.bottom() - gap - notice.height());
    for (int y = corner.y(); y >= area.top(); y -= step) {
        for (int x = corner.x(); x + notice.width() <= area.right(); x += step) {
            if (isFree({QPoint(x, y), notice}, keepFree))
                return {x, y};
        }
    }
    return corner;
}

} // namespace

QPoint noticePlace(const QSize &notice, const QRect &window, const QRect &screen, const QList<QRect> &keepFree)
{
    for (const QPoint &place : placesBeside(notice, window)) {
        if (screen.contains(QRect(place, notice)))
            return place;
    }
    return placeInside(notice, window.intersected(screen), keepFree);
}

bool isClear(const QRect &notice, const QRect &screen, const QList<QRect> &keepFree)
{
    return screen.contains(notice) && isFree(notice, keepFree);
}

QWidget *salesWindow()
{
    for (QWidget *window : QApplication::topLevelWidgets()) {
        if (window->isVisible() && window->property(SalesWindowProperty).toBool())
            return window;
    }
    return nullptr;
}

QList<QRect> keptInSight(const QWidget &window)
{
    QList<QRect> places;
    for (const QWidget *part : window.findChildren<QWidget *>()) {
        if (part->isVisible() && part->property(KeptInSightProperty).toBool())
            places << QRect(part->mapToGlobal(QPoint(0, 0)), part->size());
    }
    return places;
}

} // namespace harrowby::app
