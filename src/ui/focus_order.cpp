// SPDX-License-Identifier: MIT
#include "ui/focus_order.h"

#include <QComboBox>
#include <QLineEdit>
#include <QMainWindow>
#include <QScrollArea>

#include <algorithm>
#include <array>

namespace harrowby {

namespace {

bool takesTab(const QWidget &widget, const QMainWindow &window)
{
    return (widget.focusPolicy() & Qt::TabFocus) && widget.isEnabled() && widget.isVisible() && !widget.focusProxy() &&
           widget.window() == &window && !isCovered(widget, window);
}

/// The widget itself while it is wholly in view, else the viewport of the scroll area that it is scrolled out of.
const QWidget &inView(const QWidget &widget, const QWidget &window)
{
    for (const QWidget *parent = widget.parentWidget(); parent && parent != &window; parent = parent->parentWidget()) {
        const auto *area = qobject_cast<const QScrollArea *>(parent);
        if (!area)
            continue;
        const QWidget &viewport = *area->viewport();
        const QRect place(widget.mapTo(&viewport, QPoint()), widget.size());
        return viewport.rect().contains(place) ? widget : viewport;
    }
    return widget;
}

} // namespace

bool isCovered(const QWidget &control, const QWidget &window)
{
    const QWidget &widget = inView(control, window);
    const QRect inner = widget.rect().adjusted(1, 1, -1, -1);
    const std::array<QPoint, 5> points{inner.center(), inner.topLeft(), inner.topRight(), inner.bottomLeft(),
                                       inner.bottomRight()};
    return std::all_of(points.begin(), points.end(), [&](const QPoint &point) {
        const QWidget *top = window.childAt(widget.mapTo(&window, point));
        return top && top != &widget && !widget.isAncestorOf(top) && !top->isAncestorOf(&widget);
    });
}

void leadTo(QWidget &control, Qt::FocusReason reason)
{
    control.setFocus(reason);
    const auto *list = qobject_cast<QComboBox *>(&control);
    if (auto *entry = list != nullptr ? list->lineEdit() : qobject_cast<QLineEdit *>(&control))
        entry->selectAll();
}

bool focusNextUncovered(QMainWindow &window, bool next)
{
    QWidget *const start = window.focusWidget() ? window.focusWidget() : &window;
    const auto step = [next](QWidget *from) { return next ? from->nextInFocusChain() : from->previousInFocusChain(); };
    for (QWidget *widget = step(start); widget && widget != start; widget = step(widget)) {
        if (!takesTab(*widget, window))
            continue;
        leadTo(*widget, next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
        return true;
    }
    return false;
}

} // namespace harrowby
