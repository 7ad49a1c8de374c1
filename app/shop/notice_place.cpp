// SPDX-License-Identifier: MIT
#include "app/shop/notice_place.h"

#include <QApplication>
#include <QStringList>
#include <QWidget>

#include <algorithm>

using namespace Qt::StringLiterals;

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

QWidget *salesWindow()
{
    for (QWidget *window : QApplication::topLevelWidgets()) {
        if (window->isVisible() && window->windowTitle() == u"Sales Inventory"_s)
            return window;
    }
    return nullptr;
}

QList<QRect> visibleTotals(const QWidget &window)
{
    static const QStringList names = {u"Label5"_s,   u"Label9"_s,   u"Label15"_s,   u"Label6_3"_s,  u"Label6_4"_s,
                                      u"Label6_8"_s, u"Label6_9"_s, u"Command14"_s, u"StatusBar1"_s};
    QList<QRect> totals;
    for (const QString &name : names) {
        const auto *total = window.findChild<QWidget *>(name);
        if (total != nullptr && total->isVisible())
            totals << QRect(total->mapToGlobal(QPoint(0, 0)), total->size());
    }
    return totals;
}

} // namespace harrowby::app
