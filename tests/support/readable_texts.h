// SPDX-License-Identifier: MIT
#pragma once

#include "theme/colours.h"

#include <QAbstractButton>
#include <QApplication>
#include <QHash>
#include <QImage>
#include <QLabel>
#include <QPalette>
#include <QStringList>
#include <QStyle>
#include <QWidget>

#include <algorithm>

/// Whether what a window shows can be read, in the colours that are painted.
namespace harrowby::test {

[[nodiscard]] inline QPalette darkPalette()
{
    QPalette palette(QColor(53, 53, 53));
    palette.setColor(QPalette::Window, QColor(53, 53, 53));
    palette.setColor(QPalette::WindowText, Qt::white);
    palette.setColor(QPalette::Base, QColor(35, 35, 35));
    palette.setColor(QPalette::Text, Qt::white);
    return palette;
}

[[nodiscard]] inline QPalette lightPalette()
{
    return QApplication::style()->standardPalette();
}

/// What shows a text in the colour that the style sheet gives it.
[[nodiscard]] inline bool showsText(const QWidget &widget)
{
    if (const auto *label = qobject_cast<const QLabel *>(&widget))
        return !label->text().isEmpty();
    if (const auto *button = qobject_cast<const QAbstractButton *>(&widget))
        return !button->text().isEmpty();
    return widget.inherits("QLineEdit") || widget.inherits("QPlainTextEdit") || widget.inherits("QAbstractItemView");
}

[[nodiscard]] inline QColor textColourOf(const QWidget &widget)
{
    const bool isLabel = widget.inherits("QLabel");
    return widget.palette().color(isLabel ? widget.foregroundRole() : QPalette::Text);
}

/// The colour that most of a place has.
[[nodiscard]] inline QColor groundAt(const QImage &window, const QRect &place)
{
    constexpr int step = 3;
    QHash<QRgb, int> counts;
    for (int y = place.top(); y <= place.bottom(); y += step) {
        for (int x = place.left(); x <= place.right(); x += step)
            ++counts[window.pixel(x, y)];
    }
    const auto most = std::max_element(counts.cbegin(), counts.cend());
    return most == counts.cend() ? QColor() : QColor(most.key());
}

/// What cannot be read: names, colours and ratios. `paintsItself` says of which widgets the colours are not theirs.
template <typename Predicate>
[[nodiscard]] QStringList unreadableTexts(QWidget &window, Predicate paintsItself)
{
    const QImage image = window.grab().toImage();
    QStringList unreadable;
    for (const QWidget *widget : window.findChildren<QWidget *>()) {
        const QRect place = QRect(widget->mapTo(&window, QPoint()), widget->size()) & image.rect();
        const QWidget *shown = widget->isVisible() ? window.childAt(place.center()) : nullptr;
        if (!showsText(*widget) || paintsItself(*widget) ||
            (shown != widget && (shown == nullptr || !widget->isAncestorOf(shown))))
            continue;
        const QColor text = textColourOf(*widget);
        const QColor ground = groundAt(image, place);
        if (const double ratio = contrastRatio(text, ground); ratio < contrast::text)
            unreadable
                << QStringLiteral("%1: %2 on %3, %4").arg(widget->objectName(), text.name(), ground.name()).arg(ratio);
    }
    return unreadable;
}

[[nodiscard]] inline QStringList unreadableTexts(QWidget &window)
{
    return unreadableTexts(window, [](const QWidget &) { return false; });
}

} // namespace harrowby::test
